#include "graph/GraphLayout.h"

#include "graph/StepTrap.h"
#include "base/Errors.h"


namespace tvx {
namespace {

// A negative size is an invalid property value; the step that sets it fails.
std::int32_t checkedSize(std::int32_t size)
{
    if (size < 0)
        throw RuntimeError(ErrorNumber::InvalidProcedureCall);
    return size;
}

} // namespace

std::int32_t twipsToPixels(std::int32_t twips)
{
    const std::int32_t half = kTwipsPerPixel / 2;
    return twips >= 0 ? (twips + half) / kTwipsPerPixel : -((-twips + half) / kTwipsPerPixel);
}

GraphFrameLayout graphFrameLayout(const GraphFrameInput& input, StepTrap& trap)
{
    const std::int32_t fw = input.frameWidth;
    const std::int32_t fh = input.frameHeight;
    GraphFrameLayout layout;

    TwipSize picture = input.picGraph;
    trap.run([&] {
        const TwipRect moved{kPicGraphOrigin.left, kPicGraphOrigin.top, checkedSize((fw - 76) * kTwipsPerPixel),
                             checkedSize((fh - 24) * kTwipsPerPixel)};
        layout.picGraph = moved;
        picture = {moved.width, moved.height};
    });
    const std::int32_t pw = picture.width;
    const std::int32_t picLeft = kPicGraphOrigin.left;

    layout.scaleLeftE = 0;
    layout.scaleLeftM = (fw - 36) * kTwipsPerPixel;

    layout.lblGraph_TtLeft = picLeft + 60 + (pw - input.lblGraph_Tt.width) / 2;
    layout.lblGraph_Tl0Left = picLeft + pw - input.lblGraph_Tl0.width / 2;
    layout.lblGraph_Tl1Left = picLeft - input.lblGraph_Tl1.width / 2;

    // The labels follow the height the picture should have, even when it could not get it.
    const std::int32_t ph = (fh - 24) * kTwipsPerPixel;
    layout.scaleTop = {0, ph / 4, ph / 2, ph / 4 * 3};
    layout.axisTitleTop = ph - 120;

    layout.timeLabelTop = fh * kTwipsPerPixel - input.lblGraph_Tt.height;
    return layout;
}

FormResizeLayout formResizeLayout(std::int32_t clientWidth, std::int32_t clientHeight, bool graph)
{
    FormResizeLayout layout;
    layout.clientWidth = clientWidth;
    layout.clientHeight = clientHeight;
    if (clientHeight < kMinClientHeight) {
        layout.clientHeight = kMinClientHeight;
        layout.outerHeightTwips = (kMinClientHeight + kWindowChromeHeight) * kTwipsPerPixel;
    }
    if (graph) {
        if (clientWidth < kMinGraphClientWidth) {
            layout.clientWidth = kMinGraphClientWidth;
            layout.outerWidthTwips = kMinGraphClientWidth * kTwipsPerPixel;
        }
        layout.frmGraphVisible = true;
        layout.frmGraphWidth = layout.clientWidth - kGraphFrameWidthMargin;
        layout.frmGraphHeight = layout.clientHeight - kGraphFrameHeightMargin;
    } else if (clientWidth != kPanelClientWidth) {
        layout.clientWidth = kPanelClientWidth;
        layout.outerWidthTwips = kPanelClientWidth * kTwipsPerPixel;
    }
    return layout;
}

DebugItemLayout debugItemLayout(bool show, std::int32_t clientHeight, std::int32_t frmDebugHeight,
                                std::int32_t txtLogTop, StepTrap& trap)
{
    DebugItemLayout layout;
    layout.frmDebugVisible = show;
    if (show)
        layout.frmDebugTop = clientHeight - frmDebugHeight - 8;
    const std::int32_t below = show ? frmDebugHeight + 16 : 8;
    trap.run([&] { layout.txtLogHeight = checkedSize(clientHeight - txtLogTop - below); });
    return layout;
}

} // namespace tvx

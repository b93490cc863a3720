#include "view/Calibration.h"

#include "base/Errors.h"
#include "config/PatternColumns.h"
#include "ports/ScreenSource.h"
#include "shell/DebugLog.h"

#include <algorithm>

namespace tvx {
namespace {

std::string glyphName(int glyph)
{
    if (glyph == kEndMarkGlyph)
        return std::string(kEndMarkName);
    if (glyph == kSeparatorGlyph)
        return tr("桁区切り");
    return trFormat("数字「%1」", {std::to_string(glyph)});
}

bool skipped(const std::string& typed)
{
    return typed.empty() || typed == "-";
}

std::string joined(const std::vector<std::string>& lines, std::string_view separator)
{
    std::string out;
    for (const std::string& line : lines)
        out += (out.empty() ? "" : std::string(separator)) + line;
    return out;
}

// The first way each glyph was drawn, as columns the glyph views show.
std::array<std::vector<std::uint16_t>, kPatternCount> shapeViews(const RegionReading& reading, int& rows)
{
    std::array<std::vector<std::uint16_t>, kPatternCount> out;
    for (std::size_t k = 0; k < kPatternCount; ++k) {
        const int glyph = static_cast<int>(k) == kEndMarkGlyph ? kShapeEndMark : static_cast<int>(k);
        const auto shape = std::find_if(reading.Shapes.begin(), reading.Shapes.end(),
                                        [glyph](const GlyphShape& s) { return s.glyph == glyph; });
        if (shape == reading.Shapes.end())
            continue;
        InkGrid grid(shape->width, shape->height);
        for (std::int32_t y = 0; y < shape->height; ++y)
            for (std::int32_t x = 0; x < shape->width; ++x)
                grid.set(x, y, (shape->rows[static_cast<std::size_t>(y)] >> x & 1) != 0);
        int shapeRows = 1;
        out[k] = previewColumns(grid, shapeRows);
        rows = std::max(rows, shapeRows);
    }
    return out;
}

} // namespace

Calibration::Calibration(const Settings& settings, DebugLog* log)
    : m_log(log), m_picker(settings),
      m_learners{RegionLearner(settings, RegionLevel), RegionLearner(settings, RegionExp),
                 RegionLearner(settings, RegionMoney)}
{
}

void Calibration::regionMoved(int region)
{
    const auto r = static_cast<std::size_t>(region);
    m_learners.at(r) = RegionLearner(m_picker.settings(), region);
    m_messages[r].clear();
    m_refused[r] = false;
    m_moved = true;
}

void Calibration::setTyped(int region, std::string text)
{
    const auto first = text.find_first_not_of(' ');
    text = first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(' ') - first + 1);
    m_typed.at(static_cast<std::size_t>(region)) = std::move(text);
}

bool Calibration::acceptsNumberCharacter(char32_t typed)
{
    return (typed >= U'0' && typed <= U'9') || typed == U',' || typed == U' ' || typed == U'-';
}

bool Calibration::learn()
{
    const auto& screen = m_picker.screen();
    if (!screen)
        return false;
    bool tried = false;
    for (int region = 0; region < kRegionCount; ++region) {
        const auto r = static_cast<std::size_t>(region);
        if (skipped(m_typed[r]))
            continue;
        tried = true;
        const LearnOutcome outcome = m_learners[r].add(*screen, m_typed[r]);
        m_refused[r] = !outcome.accepted();
        m_messages[r] = outcomeText(region, outcome);
    }
    return tried;
}

void Calibration::log(const std::string& line) const
{
    if (!m_log)
        return;
    try {
        m_log->WriteDebugLog(line);
    } catch (const RuntimeError&) {
        // A log that cannot be written must not stop the calibration.
    }
}

std::string Calibration::learnCommand()
{
    log("Click : Calibration Learn ");
    if (!m_picker.screen())
        return tr("先に画面を取り込んでください。");
    return learn() ? "" : tr("数字を入力してください。");
}

std::string Calibration::beginCapture()
{
    log("Click : Calibration Capture ");
    return tr("10秒後に取り込みます。ゲームを前面に出してください…");
}

std::string Calibration::captureScreen(ScreenSource& screen)
{
    try {
        std::optional<CaptureBitmap> image = screen.grab({});
        if (!image)
            throw RuntimeError(ErrorNumber::InvalidProcedureCall, "no screen image");
        m_picker.setScreen(*std::move(image));
        return tr("取り込みました。数字を入力して「学習する」を押してください。");
    } catch (const std::exception& e) {
        log(errorTrapLine("cmdCalibrationCapture_Click", errorNumberOf(e)));
        return tr("画面を取り込めませんでした。");
    }
}

void Calibration::applyCommand(Settings& settings) const
{
    log("Click : Calibration Apply ");
    applyTo(settings);
}

std::string Calibration::outcomeText(int region, const LearnOutcome& outcome) const
{
    const RegionLearner& learner = m_learners[static_cast<std::size_t>(region)];
    const std::string oldThreshold = std::to_string(m_picker.settings().BinaryThreshold[static_cast<std::size_t>(region)]);
    switch (outcome.refusal) {
    case LearnRefusal::None: {
        const std::string size = std::to_string(learner.glyphSize());
        // One sentence, then what else the player should know, each a sentence of its own.
        return trFormat("学習しました（%1）", {learner.mode() == ReadingMode::Exact
                                                   ? trFormat("文字幅 %1 列", {size})
                                                   : trFormat("字形、高さ %1 行", {size})}) +
               (learner.ambiguous() ? tr("。別の画面でも学習すると確かになります") : "") +
               (learner.thresholdProposed()
                    ? trFormat("。しきい値 %1 では数字が分かれないため %2 にします",
                               {oldThreshold, std::to_string(learner.threshold())})
                    : "") +
               (learner.replacedPrior() ? tr("。以前の学習内容と合わないため置き換えます") : "");
    }
    case LearnRefusal::NotANumber: return tr("数字を入力してください");
    case LearnRefusal::OutsideImage: return tr("領域が画像の外です");
    case LearnRefusal::NoSplit:
        return trFormat("領域の文字が %1 桁の数字と終わりの記号に分けられません",
                        {std::to_string(numberDigits(m_typed[static_cast<std::size_t>(region)]).value_or("").size())});
    case LearnRefusal::Contradiction:
        if (outcome.glyph < 0)
            return trFormat("文字幅がこれまでの画像と違います（これまで %1 列、この画像は %2 列）",
                            {std::to_string(outcome.learntWidth), std::to_string(outcome.imageWidth)});
        return trFormat("%1がこれまでの画像と違います。入力した数字を確かめてください", {glyphName(outcome.glyph)});
    case LearnRefusal::ReadBack:
        return trFormat("学習したパターンでは「%1」と読めてしまうため、使えません",
                        {outcome.readBack.empty() ? std::string(tr("認識NG")) : outcome.readBack});
    }
    return {};
}

CalibrationRegionView Calibration::view(int region) const
{
    const auto r = static_cast<std::size_t>(region);
    const RegionLearner& learner = m_learners.at(r);
    Settings learnt = m_picker.settings();
    learner.applyTo(learnt);
    CalibrationRegionView out;
    out.typed = m_typed[r];
    out.message = m_messages[r];
    out.refused = m_refused[r];
    out.width = learner.glyphSize();
    out.mode = learnt.Reading[r].Mode;
    out.threshold = learnt.BinaryThreshold[r];
    out.thresholdProposed = learner.thresholdProposed();
    out.rows = std::clamp(learnt.CaptureRegion[r].SizeY, 1, kPreviewMaxRows);
    for (std::size_t k = 0; k < kPatternCount; ++k) {
        out.learnt[k] = learner.seen(static_cast<int>(k));
        if (out.mode == ReadingMode::Exact)
            out.glyphs[k] = decodePatternColumns(learnt.PatternStrings[r][k]).value_or(std::vector<std::uint16_t>{});
    }
    if (out.mode == ReadingMode::Shapes)
        out.glyphs = shapeViews(learnt.Reading[r], out.rows);
    out.missing = learner.missing();
    for (std::size_t i = 0; i < learner.imageCount(); ++i) {
        std::string read;
        try {
            const RecognitionResult result = learner.readBack(i);
            read = result.digits.empty() ? result.caption : result.digits;
        } catch (const RuntimeError&) {
            read = tr("認識NG");
        }
        out.readBack.push_back(learner.number(i) + " → " + read);
    }
    out.text = out.message;
    if (!out.readBack.empty())
        out.text += "\n" + trFormat("読み方： %1、しきい値 %2", {readingModeName(out.mode), std::to_string(out.threshold)}) +
                    (out.thresholdProposed ? tr("（提案）") : "") + "\n" +
                    trFormat("読み返し： %1", {joined(out.readBack, tr("、"))}) +
                    (out.missing.empty() ? tr("　全数字を学習済み") : trFormat("　未学習： %1", {out.missing}));
    return out;
}

RegionPreview Calibration::preview(int region) const
{
    Settings learnt = m_picker.settings();
    m_learners.at(static_cast<std::size_t>(region)).applyTo(learnt);
    const auto& screen = m_picker.screen();
    return previewRegion(screen ? &*screen : nullptr, learnt, region);
}

std::string Calibration::readingText(const RegionPreview& preview)
{
    return trFormat("読み取り： %1", {preview.reading});
}

bool Calibration::hasChanges() const
{
    return m_moved || std::any_of(m_learners.begin(), m_learners.end(), [](const RegionLearner& l) { return l.learnt(); });
}

void Calibration::applyTo(Settings& settings) const
{
    settings.CaptureRegion = m_picker.settings().CaptureRegion;
    for (const RegionLearner& learner : m_learners)
        learner.applyTo(settings);
}

} // namespace tvx

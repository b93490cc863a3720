#include "view/Calibration.h"

#include "base/Errors.h"
#include "config/PatternColumns.h"

#include <algorithm>

namespace tvx {
namespace {

std::string glyphName(int glyph)
{
    if (glyph == kEndMarkGlyph)
        return "終わりの記号";
    if (glyph == kSeparatorGlyph)
        return "桁区切り";
    return "数字「" + std::to_string(glyph) + "」";
}

bool skipped(const std::string& typed)
{
    return typed.empty() || typed == "-";
}

} // namespace

Calibration::Calibration(const Settings& settings)
    : m_picker(settings), m_learners{TemplateLearner(settings, RegionLevel), TemplateLearner(settings, RegionExp),
                                     TemplateLearner(settings, RegionMoney)}
{
}

void Calibration::regionMoved(int region)
{
    const auto r = static_cast<std::size_t>(region);
    m_learners.at(r) = TemplateLearner(m_picker.settings(), region);
    m_messages[r].clear();
    m_refused[r] = false;
    m_moved = true;
}

void Calibration::setTyped(int region, std::string text)
{
    m_typed.at(static_cast<std::size_t>(region)) = std::move(text);
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

std::string Calibration::outcomeText(int region, const LearnOutcome& outcome) const
{
    const TemplateLearner& learner = m_learners[static_cast<std::size_t>(region)];
    switch (outcome.refusal) {
    case LearnRefusal::None:
        return "学習しました（文字幅 " + std::to_string(learner.glyphWidth()) + " 列）" +
               (learner.ambiguous() ? "。別の画面でも学習すると確かになります" : "");
    case LearnRefusal::NotANumber: return "数字を入力してください";
    case LearnRefusal::OutsideImage: return "領域が画像の外です";
    case LearnRefusal::NoSplit:
        return "領域の文字が " + std::to_string(numberDigits(m_typed[static_cast<std::size_t>(region)]).value_or("").size()) +
               " 桁の数字と終わりの記号に分けられません";
    case LearnRefusal::Contradiction:
        if (outcome.glyph < 0)
            return "文字幅がこれまでの画像と違います（これまで " + std::to_string(outcome.learntWidth) + " 列、この画像は " +
                   std::to_string(outcome.imageWidth) + " 列）";
        return glyphName(outcome.glyph) + "がこれまでの画像と違います。入力した数字を確かめてください";
    case LearnRefusal::ReadBack:
        return "学習したパターンでは「" + (outcome.readBack.empty() ? std::string("認識NG") : outcome.readBack) +
               "」と読めてしまうため、使えません";
    }
    return {};
}

CalibrationRegionView Calibration::view(int region) const
{
    const auto r = static_cast<std::size_t>(region);
    const TemplateLearner& learner = m_learners.at(r);
    CalibrationRegionView out;
    out.typed = m_typed[r];
    out.message = m_messages[r];
    out.refused = m_refused[r];
    out.width = learner.glyphWidth();
    const PatternSet patterns = learner.patterns();
    for (std::size_t k = 0; k < kPatternCount; ++k) {
        out.learnt[k] = learner.seen(static_cast<int>(k));
        out.glyphs[k] = decodePatternColumns(patterns[k]).value_or(std::vector<std::uint16_t>{});
        if (k < 10 && !out.learnt[k])
            out.missing += static_cast<char>('0' + k);
    }
    for (std::size_t i = 0; i < learner.imageCount(); ++i) {
        std::string read;
        try {
            const RecognitionResult result = learner.readBack(i);
            read = result.digits.empty() ? result.caption : result.digits;
        } catch (const RuntimeError&) {
            read = "認識NG";
        }
        out.readBack.push_back(learner.number(i) + " → " + read);
    }
    return out;
}

RegionPreview Calibration::preview(int region) const
{
    Settings learnt = m_picker.settings();
    m_learners.at(static_cast<std::size_t>(region)).applyTo(learnt);
    const auto& screen = m_picker.screen();
    return previewRegion(screen ? &*screen : nullptr, learnt, region);
}

bool Calibration::hasChanges() const
{
    return m_moved || std::any_of(m_learners.begin(), m_learners.end(), [](const TemplateLearner& l) { return l.learnt(); });
}

void Calibration::applyTo(Settings& settings) const
{
    settings.CaptureRegion = m_picker.settings().CaptureRegion;
    for (const TemplateLearner& learner : m_learners)
        learner.applyTo(settings);
}

} // namespace tvx

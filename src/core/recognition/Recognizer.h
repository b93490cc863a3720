#pragma once

#include "config/Settings.h"
#include "base/Language.h"

#include <string>
#include <string_view>
#include <vector>

namespace tvx {

// Captions of the region label, kept in Japanese in results and shown through tr().
inline constexpr std::string_view kCaptionRecognizing = N_("認識中…");
inline constexpr std::string_view kCaptionNotFound = N_("NotFind");
inline constexpr std::string_view kCaptionFailed = N_("認識NG");
inline constexpr std::string_view kCaptionHidden = N_("Hidden");

struct RecognitionResult {
    std::string digits;             // empty when nothing was read
    std::string caption;            // final caption of the region's label
    std::vector<std::string> trace; // filled only when tracing
    // The templates that are not whole (empty, cut, not hexadecimal), as "0 5 10", when the
    // reading failed because ink between the digits matched none of them.
    std::string untaught;
};

// Receives the label captions while recognition is in progress (debug mode only).
class CaptionSink {
public:
    virtual ~CaptionSink() = default;
    virtual void setCaption(int region, std::string_view caption) = 0;
};

// What the recogniser reads of one region.
struct RecognizerInput {
    std::string_view columnString;
    const PatternSet* patterns = nullptr;
    std::int32_t glyphWidth = 0; // columns per glyph
    std::int32_t regionWidth = 0; // SizeX of the region
    std::string_view separator;   // the learnt thousands separator, if any
};

// Whether every template of the set is glyph-wide hexadecimal columns: only then does the
// walk step over ink it cannot match; otherwise such ink fails the reading.
bool wholeTemplateSet(const PatternSet& patterns, std::int32_t glyphWidth);
// The indices of the templates that are not whole, as "0 5 10".
std::string untaughtTemplates(const PatternSet& patterns, std::int32_t glyphWidth);

RecognizerInput recognizerInput(const Settings& settings, int region, std::string_view columnString);

// Reads the number in a region's column string by matching its templates left to right up
// to the delimiter. With `trace` on, collects the trace lines and reports progress captions.
// A region of 3 or more raises RuntimeError(SubscriptOutOfRange).
RecognitionResult RecognizeNumber(int region, const RecognizerInput& input, bool trace = false,
                                  CaptionSink* progress = nullptr);

// The trace as one block for the debug log, lines joined by CR LF.
std::string joinTrace(const std::vector<std::string>& trace);

} // namespace tvx

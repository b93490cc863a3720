#pragma once

#include "config/Settings.h"
#include "recognition/InkGrid.h"
#include "recognition/Recognizer.h"

#include <string>
#include <vector>

namespace tvx {

// The glyph a piece of ink is nearest to, and how clearly.
struct ShapeMatch {
    int glyph = -1;                   // -1: like none
    double distance = kIncomparable;  // to the nearest shape of that glyph
    double runnerUp = kIncomparable;  // to the nearest shape of any other glyph
    bool clear = false;               // near it, and much nearer than to any other glyph
};

// tolerance: how far from a shape a piece may be and still be that glyph.
ShapeMatch matchShape(const GlyphShape& piece, const std::vector<GlyphShape>& shapes, double tolerance);
double toleranceOf(const RegionReading& reading);

enum class ShapeFailure {
    None,
    NoDigit,  // no piece is clearly a digit
    Unclear,  // a piece at or in the number is not clearly one glyph
    NoEnd,    // no end mark and not enough blank after the last digit
    Grouping, // separators that do not split the digits in threes
};

struct ShapeReading {
    std::string digits; // empty unless read
    ShapeFailure failure = ShapeFailure::None;
    std::int32_t column = -1; // where the reading failed
    std::vector<std::string> trace;
};

// Reads the number from the ink pieces: label pieces before it are stepped over, then
// digits (and separators between groups of three) up to the end mark or a blank stretch
// of reading.EndGap columns. Anything not clearly one glyph fails the reading: a wrong
// number would become a gain and a record line.
ShapeReading readShapes(const InkGrid& grid, const RegionReading& reading);

// How many touching digits a piece holds at a pitch in hundredths of a column (0: one).
std::int32_t cellsIn(const InkPiece& piece, std::int32_t pitch);

// The blank columns a number needs before the region's right edge for the edge to end it.
std::int32_t edgeRoom(std::int32_t innerGap);

// The same as the recogniser's result, captions included.
RecognitionResult shapeRecognition(int region, const InkGrid& grid, const RegionReading& reading, bool trace);

// The digits no shape of the set shows.
std::string missingShapeDigits(const RegionReading& reading);

} // namespace tvx

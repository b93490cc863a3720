#include "StandardStreams.h"

namespace tvx::platform {

// The streams pass bytes through untouched; terminals here read UTF-8.
struct Utf8StandardStreams::State {};

Utf8StandardStreams::Utf8StandardStreams() = default;
Utf8StandardStreams::~Utf8StandardStreams() = default;

} // namespace tvx::platform

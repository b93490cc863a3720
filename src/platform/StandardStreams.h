#pragma once

#include <memory>

namespace tvx::platform {

// Standard output and error carrying the core's UTF-8 bytes as they are, for as long as the
// object lives. On Windows the streams go to binary mode (no CR LF translation, so the bytes
// equal Linux's), and a stream that is a console gets its text as UTF-16 through the console
// itself, which shows Japanese right whatever the console's code page. Elsewhere nothing
// needs doing. Create it first thing in main, before anything is written.
class Utf8StandardStreams {
public:
    Utf8StandardStreams();
    ~Utf8StandardStreams();
    Utf8StandardStreams(const Utf8StandardStreams&) = delete;
    Utf8StandardStreams& operator=(const Utf8StandardStreams&) = delete;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace tvx::platform

#include "StandardStreams.h"

#include "Win32Text.h"

#include <fcntl.h>
#include <io.h>

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <memory>
#include <streambuf>
#include <string>

namespace tvx::platform {
namespace {

bool isConsole(HANDLE handle)
{
    DWORD mode = 0;
    return handle != nullptr && handle != INVALID_HANDLE_VALUE && GetConsoleMode(handle, &mode) != 0;
}

// Writes UTF-8 text to a console as UTF-16, holding back a character split between writes.
class ConsoleBuffer final : public std::streambuf {
public:
    explicit ConsoleBuffer(HANDLE console) : m_console(console) {}
    ~ConsoleBuffer() override { write(m_pending.size()); }

protected:
    int_type overflow(int_type c) override
    {
        if (!traits_type::eq_int_type(c, traits_type::eof()))
            m_pending.push_back(traits_type::to_char_type(c));
        return traits_type::not_eof(c);
    }
    std::streamsize xsputn(const char* text, std::streamsize count) override
    {
        m_pending.append(text, static_cast<std::size_t>(count));
        return count;
    }
    int sync() override { return write(win32::completeUtf8Length(m_pending)) ? 0 : -1; }

private:
    bool write(std::size_t length)
    {
        const std::wstring text = win32::wide(std::string_view(m_pending).substr(0, length));
        m_pending.erase(0, length);
        for (std::size_t done = 0; done < text.size();) {
            const DWORD chunk = static_cast<DWORD>(std::min<std::size_t>(text.size() - done, 8192));
            DWORD written = 0;
            if (!WriteConsoleW(m_console, text.data() + done, chunk, &written, nullptr) || written == 0)
                return false;
            done += written;
        }
        return true;
    }

    HANDLE m_console;
    std::string m_pending;
};

// One standard stream: binary at the C runtime, and through the console when it is one.
class Stream {
public:
    Stream(std::ostream& stream, std::FILE* file, DWORD handleId) : m_stream(stream)
    {
        std::fflush(file);
        _setmode(_fileno(file), _O_BINARY);
        const HANDLE handle = GetStdHandle(handleId);
        if (!isConsole(handle))
            return;
        m_stream.flush();
        m_console = std::make_unique<ConsoleBuffer>(handle);
        m_previous = m_stream.rdbuf(m_console.get());
    }
    ~Stream()
    {
        if (!m_console)
            return;
        m_stream.flush();
        m_stream.rdbuf(m_previous);
    }
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

private:
    std::ostream& m_stream;
    std::unique_ptr<ConsoleBuffer> m_console;
    std::streambuf* m_previous = nullptr;
};

} // namespace

struct Utf8StandardStreams::State {
    Stream out{std::cout, stdout, STD_OUTPUT_HANDLE};
    Stream err{std::cerr, stderr, STD_ERROR_HANDLE};
};

Utf8StandardStreams::Utf8StandardStreams() : m_state(std::make_unique<State>()) {}
Utf8StandardStreams::~Utf8StandardStreams() = default;

} // namespace tvx::platform

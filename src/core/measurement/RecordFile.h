#pragma once

#include "config/Settings.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace tvx {

class TextCodec;

// The header line of a new record file.
std::string recordHeader(bool csv);

// SaveFolder/log/ + SaveFile + ("yyyymm" + "月" monthly, else the whole stamp) + .csv/.txt.
std::filesystem::path recordFilePath(const Settings& settings, std::string_view sessionStamp);

// The hourly record file, opened and closed for every line. New files are UTF-8 with a
// byte-order mark, which Japanese spreadsheets open correctly; a file that exists already
// (an older month's file, say) is appended to in the encoding it has, CP932 included.
class RecordFile {
public:
    static constexpr int kAppend = 0;
    static constexpr int kStart = 1;

    // codec may be null; CP932 files are then appended to in UTF-8.
    RecordFile(const Settings& settings, TextCodec* codec) : m_settings(settings), m_codec(codec) {}

    // Mode 1 starts the file with its header (a monthly file that exists is kept); mode 0
    // appends `text` as one line, but a missing file only gets its header. Nothing happens
    // while no session runs (empty stamp). File errors throw RuntimeError.
    void WriteRecordLine(std::string_view sessionStamp, std::string_view text, int mode);

private:
    void writeNew(const std::filesystem::path& path);
    void append(const std::filesystem::path& path, std::string_view text);

    const Settings& m_settings;
    TextCodec* m_codec;
};

} // namespace tvx

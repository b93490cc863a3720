#include "measurement/RecordFile.h"

#include "ports/TextCodec.h"
#include "base/Errors.h"
#include "base/Utf8Path.h"

#include <fstream>
#include <system_error>

namespace tvx {

namespace {

constexpr std::string_view kBom = "\xEF\xBB\xBF";
constexpr std::string_view kLineBreak = "\r\n";

bool isValidUtf8(std::string_view text)
{
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i]);
        std::size_t length = lead < 0x80 ? 1 : lead >= 0xF0 && lead < 0xF5 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC2 ? 2 : 0;
        if (length == 0)
            return false;
        if (i + length > text.size())
            return true; // cut off by the sample, not broken
        for (std::size_t k = 1; k < length; ++k)
            if ((static_cast<unsigned char>(text[i + k]) & 0xC0) != 0x80)
                return false;
        i += length;
    }
    return true;
}

// The first part of an existing file tells its encoding: the header line holds Japanese.
bool fileIsUtf8(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    std::string sample(4096, '\0');
    in.read(sample.data(), static_cast<std::streamsize>(sample.size()));
    sample.resize(static_cast<std::size_t>(in.gcount()));
    return sample.starts_with(kBom) || isValidUtf8(sample);
}

void writeBytes(const std::filesystem::path& path, std::string_view bytes, std::ios::openmode mode)
{
    std::ofstream out(path, std::ios::binary | mode);
    if (!out)
        throw RuntimeError(ErrorNumber::PathFileAccessError, "cannot open " + pathUtf8(path));
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.close();
    if (!out)
        throw RuntimeError(ErrorNumber::PathFileAccessError, "cannot write " + pathUtf8(path));
}

} // namespace

std::string recordHeader(bool csv)
{
    return csv ? " 月日 時刻  ,   Lv  ,       Exp     ,        メル    ,      獲得Exp   ,       獲得メル   , "
                 "Exp経過(分) , Exp時給(k/h) , メル経過(分) , メル時給(k/h)"
               : " 月日 時刻      Lv          Exp              メル           獲得Exp           獲得メル     "
                 "Exp経過(分)   Exp時給(k/h)   メル経過(分)   メル時給(k/h)";
}

std::filesystem::path recordFilePath(const Settings& settings, std::string_view sessionStamp)
{
    std::string name = settings.SaveFile;
    name += settings.SaveMonthly ? std::string(sessionStamp.substr(0, 6)) + "月" : std::string(sessionStamp);
    name += settings.SaveCsv ? ".csv" : ".txt";
    return utf8Path(settings.SaveFolder) / "log" / utf8Path(name);
}

void RecordFile::WriteRecordLine(std::string_view sessionStamp, std::string_view text, int mode)
{
    if (sessionStamp.empty())
        return;
    const std::filesystem::path path = recordFilePath(m_settings, sessionStamp);
    std::error_code error;
    std::filesystem::create_directories(path.parent_path(), error);
    if (error)
        throw RuntimeError(ErrorNumber::PathNotFound, "cannot create " + pathUtf8(path.parent_path()));
    // A name the file system refuses (too long, say) is the caller's trapped error.
    const bool exists = std::filesystem::exists(path, error);
    if (error)
        throw RuntimeError(ErrorNumber::BadFileName, pathUtf8(path));
    if (!exists || mode == kStart) {
        if (exists && m_settings.SaveMonthly)
            return;
        writeNew(path);
        return;
    }
    append(path, text);
}

void RecordFile::writeNew(const std::filesystem::path& path)
{
    std::string bytes(kBom);
    bytes += recordHeader(m_settings.SaveCsv);
    bytes += kLineBreak;
    writeBytes(path, bytes, std::ios::trunc);
}

void RecordFile::append(const std::filesystem::path& path, std::string_view text)
{
    std::string bytes(text);
    bytes += kLineBreak;
    if (m_codec != nullptr && !fileIsUtf8(path))
        bytes = m_codec->toCp932(bytes);
    writeBytes(path, bytes, std::ios::app);
}

} // namespace tvx

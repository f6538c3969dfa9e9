#include "zelto/baselib/internal/RegularFile.h"

#include "zelto/baselib/internal/LastError.h"

#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <vector>

namespace zelto {

namespace {

/// What takes the place of a file's extension in the names of its side files, in small letters.
constexpr const char* SIDE_EXTENSIONS[] = {"wld", "prj", "aux", "rrd", "hdr", "tab", "clr", "stx",
                                           "rpb", "imd", "dbf", "shx", "cpg", "qix", "sbn", "sbx"};
/// What follows a file's whole name in those of its side files.
constexpr const char* SIDE_ENDINGS[] = {".aux.xml", ".ovr", ".msk", ".hdr", ".rrd"};

std::string Upper(std::string text) {
    for (char& c : text)
        if (c >= 'a' && c <= 'z')
            c = static_cast<char>(c - 'a' + 'A');
    return text;
}

/// The extensions of world files: "tfw" and "tifw" for "tif".
std::vector<std::string> WorldExtensions(const std::string& extension) {
    if (extension.empty())
        return {};
    return {std::string{extension.front(), extension.back(), 'w'}, extension + "w"};
}

std::vector<std::string> SideFiles(const std::string& path) {
    std::vector<std::string> files;
    for (const char* ending : SIDE_ENDINGS)
        files.push_back(path + ending);
    const std::size_t name = path.rfind('/') + 1;
    const std::size_t dot = path.rfind('.');
    const bool hasExtension = dot != std::string::npos && dot >= name;
    const std::string stem = hasExtension ? path.substr(0, dot) : path;
    std::vector<std::string> extensions =
        WorldExtensions(hasExtension ? path.substr(dot + 1) : std::string());
    extensions.insert(extensions.end(), std::begin(SIDE_EXTENSIONS), std::end(SIDE_EXTENSIONS));
    for (const std::string& extension : extensions) {
        files.push_back(stem + "." + extension);
        files.push_back(stem + "." + Upper(extension));
    }
    return files;
}

bool Refuse(const std::string& path, const char* reason) {
    SetLastError(path + ": " + reason);
    return false;
}

} // namespace

bool IsPipeOrDevice(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode);
}

bool OpenRegularFile(std::ifstream& stream, const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0)
        return Refuse(path, std::strerror(errno));
    if (S_ISDIR(status.st_mode))
        return Refuse(path, "is a directory");
    if (!S_ISREG(status.st_mode))
        return Refuse(path, "not a regular file");
    stream.open(path, std::ios::binary);
    if (!stream)
        return Refuse(path, std::strerror(errno));
    return true;
}

bool MayBeOpened(const std::string& path) {
    if (IsPipeOrDevice(path))
        return Refuse(path, "not a regular file");
    struct stat status {};
    if (stat(path.c_str(), &status) != 0 || S_ISDIR(status.st_mode))
        return true;
    for (const std::string& file : SideFiles(path))
        if (IsPipeOrDevice(file))
            return Refuse(file, "not a regular file");
    return true;
}

} // namespace zelto

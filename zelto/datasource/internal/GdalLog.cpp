#include "zelto/datasource/internal/GdalLog.h"

#include <cpl_conv.h>
#include <cpl_error.h>

#include <array>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>

namespace zelto {

namespace {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

std::string TimeStamp() {
    const std::time_t now = std::time(nullptr);
    std::tm local = {};
    localtime_r(&now, &local);
    std::array<char, 32> text = {};
    const std::size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &local);
    return {text.data(), length};
}

std::string Label(CPLErr severity, CPLErrorNum number) {
    if (severity == CE_Debug)
        return "Debug: ";
    if (severity == CE_Warning)
        return "Warning " + std::to_string(number) + ": ";
    return "ERROR " + std::to_string(number) + ": ";
}

using File = std::unique_ptr<std::FILE, FileCloser>;

/// The folder to make for the log; empty: none.
std::string& FolderToMake() {
    static std::string folder;
    return folder;
}

File OpenLog(const char* path) {
    File file(std::fopen(path, "ab"));
    if (!file && !FolderToMake().empty()) {
        std::error_code error;
        std::filesystem::create_directories(FolderToMake(), error);
        if (!error)
            file.reset(std::fopen(path, "ab"));
    }
    return file;
}

/// Opens the file for every message: messages are rare, and a file that is not kept open can
/// be moved away or read by others. One write per line keeps lines of several threads whole.
void CPL_STDCALL AppendToLog(CPLErr severity, CPLErrorNum number, const char* message) {
    const char* path = CPLGetConfigOption("CPL_LOG", nullptr);
    if (path == nullptr || *path == '\0')
        return;
    const File file = OpenLog(path);
    if (!file)
        return;
    const std::string line = TimeStamp() + " " + Label(severity, number) + message + "\n";
    std::fwrite(line.data(), 1, line.size(), file.get());
}

/// Replaces the process-wide handler if it is the expected one.
void ExchangeHandler(CPLErrorHandler expected, CPLErrorHandler replacement) {
    // GDAL tells which handler is installed only by replacing it.
    void* userData = CPLGetErrorHandlerUserData();
    const CPLErrorHandler present = CPLSetErrorHandlerEx(replacement, nullptr);
    if (present != expected)
        CPLSetErrorHandlerEx(present, userData);
}

} // namespace

void InstallGdalLog(const std::string& folderToMake) {
    FolderToMake() = folderToMake;
    ExchangeHandler(CPLDefaultErrorHandler, AppendToLog);
}

void RemoveGdalLog() {
    ExchangeHandler(AppendToLog, CPLDefaultErrorHandler);
}

} // namespace zelto

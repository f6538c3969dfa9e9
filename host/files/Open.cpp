#include "host/files/Open.h"

#include "zelto/datasource/GISDataSource.h"

#include "host/base/Breakdown.h"
#include "host/base/Failure.h"
#include "host/base/Interrupts.h"
#include "host/base/Message.h"
#include "host/base/Text.h"

#include <cpl_conv.h>
#include <cpl_error.h>
#include <cpl_vsi.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <unistd.h>

namespace zelto::host {

void TrustFileEncodings() {
    CPLSetConfigOption("SHAPE_ENCODING", nullptr);
}

void ForgetReasons() {
    CPLErrorReset();
    CGISDataSource::ClearLastErrorText();
}

std::string LastReason(const std::string& otherwise) {
    std::string message = CGISDataSource::GetLastErrorText();
    if (message.empty())
        message = CPLGetLastErrorMsg();
    for (char& c : message) {
        if (c == '\n' || c == '\r')
            c = ' ';
    }
    return message.empty() ? otherwise : message;
}

std::string ReasonOfEnding(const std::string& otherwise) {
    return Interrupted() ? "interrupted" : LastReason(otherwise);
}

bool IsPipeOrDevice(const std::string& path) {
    std::error_code ignored;
    return std::filesystem::is_other(path, ignored);
}

void RequireNoPipe(const std::string& path) {
    if (IsPipeOrDevice(path))
        throw Failure(path, "not a regular file");
}

std::string ReasonForFailure(const std::string& path, GISError error) {
    VSIStatBufL status;
    const bool onDisk = path.rfind("/vsi", 0) != 0 && path.find(':') == std::string::npos;
    if (onDisk && VSIStatL(path.c_str(), &status) != 0)
        return std::strerror(errno);
    if (IsPipeOrDevice(path))
        return "not a regular file";
    if (onDisk && VSI_ISREG(status.st_mode) && access(path.c_str(), R_OK) != 0)
        return std::strerror(errno);
    if (onDisk && VSI_ISREG(status.st_mode) && status.st_size == 0)
        return "the file is empty";
    if (error == GIS_NOT_SUPPORTED)
        return LastReason("it holds nothing usable");
    if (onDisk && VSI_ISDIR(status.st_mode))
        return "is a directory";
    return LastReason("not recognised as a supported file");
}

namespace {

/// Passes on the engine's word that an image may look wrong when it is reduced.
void TellOfDoubtfulPyramid() {
    const std::string message = CPLGetLastErrorMsg();
    if (CPLGetLastErrorType() == CE_Warning && message.find("its pyramid is") != std::string::npos)
        Remark("warning: " + message);
}

} // namespace

void OpenOrFail(CGISDataSource& source, const std::string& path, GISDataAccess access, bool warp) {
    ForgetReasons();
    TellAtWork(path);
    TrustFileEncodings();
    const GISError error = source.Open(Wide(path).c_str(), access, warp);
    EndIfInterrupted();
    if (error != GIS_SUCCESS)
        throw Failure(path, ReasonForFailure(path, error));
    TellOfDoubtfulPyramid();
}

} // namespace zelto::host

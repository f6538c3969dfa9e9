#include "tests/fuzz/InputFolder.h"

#include "zelto/baselib/CommonFun.h"

#include "tests/fuzz/FuzzEngine.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <unistd.h>

namespace zelto::fuzz {

namespace {

/// In memory where the system has such a folder: no disk slows an input down.
std::filesystem::path Place() {
    const char* const memory = "/dev/shm";
    return access(memory, W_OK) == 0 ? memory : std::filesystem::temp_directory_path();
}

} // namespace

const InputFolder& InputFolder::Get() {
    static const InputFolder folder;
    return folder;
}

InputFolder::InputFolder() {
    m_path = Place() / "zelto-fuzz-XXXXXX";
    Require(mkdtemp(m_path.data()) != nullptr, "a folder can be made");
}

InputFolder::~InputFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::wstring InputFolder::WideFile(const std::string& name) const {
    return CommonFun::M2U(File(name));
}

void InputFolder::Write(const std::string& name, const void* data, std::size_t size) const {
    std::ofstream stream(File(name), std::ios::binary);
    stream.write(static_cast<const char*>(data), static_cast<std::streamsize>(size));
    Require(bool(stream.flush()), "an input can be written");
}

std::string InputFolder::Read(const std::string& name) const {
    std::ifstream stream(File(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace zelto::fuzz

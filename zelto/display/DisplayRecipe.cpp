#include "zelto/display/DisplayRecipe.h"

#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/internal/BinaryFile.h"
#include "zelto/baselib/internal/Operation.h"
#include "zelto/baselib/internal/RegularFile.h"
#include "zelto/display/internal/RecipeContent.h"
#include "zelto/raster/RasterSource.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace {

/// A recipe of 65,536 classes takes less than this.
constexpr std::uintmax_t LARGEST_FILE = 32U << 20;

/// Runs a body; where it throws, the file goes in front of the reason.
template <typename Body>
bool About(const std::wstring& file, const Body& body) {
    return zelto::Operation(false, [&] {
        const bool done = zelto::NoThrow(false, body);
        if (!done)
            zelto::NameFileOfLastError(file);
        return done;
    });
}

std::filesystem::path FolderOf(const std::string& file) {
    return std::filesystem::absolute(std::filesystem::u8path(file)).parent_path();
}

std::string ReadText(const std::string& path) {
    std::ifstream stream;
    if (!zelto::OpenRegularFile(stream, path))
        throw std::runtime_error(zelto::LastError());
    if (std::filesystem::file_size(std::filesystem::u8path(path)) > LARGEST_FILE)
        throw std::runtime_error("it is too large for a recipe");
    return {std::istreambuf_iterator<char>(stream), {}}; // a failed read throws
}

} // namespace

CDisplayRecipe::CDisplayRecipe() : m_content(std::make_unique<zelto::RecipeContent>()) {}

CDisplayRecipe::CDisplayRecipe(const CDisplayRecipe& other)
    : m_content(std::make_unique<zelto::RecipeContent>(*other.m_content)) {}

CDisplayRecipe& CDisplayRecipe::operator=(const CDisplayRecipe& other) {
    *m_content = *other.m_content;
    return *this;
}

CDisplayRecipe::~CDisplayRecipe() = default;

bool CDisplayRecipe::Take(const CRasterSource& source) {
    return About(source.GetFilePath(), [&] {
        zelto::RecipeContent content = zelto::ContentOf(source);
        content.view = m_content->view;
        content.mask = m_content->mask;
        *m_content = std::move(content);
        return true;
    });
}

bool CDisplayRecipe::Apply(CRasterSource& source) const {
    return About(source.GetFilePath(), [&] {
        zelto::ApplyContent(*m_content, source);
        return true;
    });
}

void CDisplayRecipe::SetView(const std::optional<View>& view) {
    m_content->view = view;
}

const std::optional<CDisplayRecipe::View>& CDisplayRecipe::GetView() const {
    return m_content->view;
}

void CDisplayRecipe::SetMask(const std::optional<Mask>& mask) {
    m_content->mask = mask;
}

const std::optional<CDisplayRecipe::Mask>& CDisplayRecipe::GetMask() const {
    return m_content->mask;
}

bool CDisplayRecipe::Read(const wchar_t* path) {
    const std::wstring file = path != nullptr ? path : L"";
    return About(file, [&] {
        const std::string name = CommonFun::U2M(file);
        zelto::RecipeContent content = zelto::FromJson(ReadText(name));
        if (auto& mask = content.mask) {
            const auto area = std::filesystem::u8path(CommonFun::U2M(mask->area));
            mask->area = CommonFun::M2U((FolderOf(name) / area).lexically_normal().string());
        }
        *m_content = std::move(content);
        return true;
    });
}

bool CDisplayRecipe::Write(const wchar_t* path) const {
    const std::wstring file = path != nullptr ? path : L"";
    return About(file, [&] {
        zelto::RecipeContent content = *m_content;
        if (auto& mask = content.mask) {
            const auto area =
                std::filesystem::absolute(std::filesystem::u8path(CommonFun::U2M(mask->area)));
            mask->area = CommonFun::M2U(
                std::filesystem::proximate(area, FolderOf(CommonFun::U2M(file))).string());
        }
        zelto::ReplacementFile recipe(file);
        recipe.Stream() << zelto::ToJson(content);
        if (recipe.Commit())
            return true;
        const std::string& reason = zelto::LastError();
        throw std::runtime_error(!reason.empty() ? reason : std::strerror(errno));
    });
}

bool CDisplayRecipe::SetJson(const std::string& text) {
    return zelto::Operation(false, [&] {
        *m_content = zelto::FromJson(text);
        return true;
    });
}

std::string CDisplayRecipe::GetJson() const {
    return zelto::Operation(std::string(), [&] { return zelto::ToJson(*m_content); });
}

#include "zelto/baselib/internal/SpatialReference.h"

#include "zelto/baselib/internal/RegularFile.h"

#include <cpl_conv.h>
#include <cpl_error.h>

#include <memory>
#include <vector>

namespace zelto {
namespace {

struct CplFree {
    void operator()(char* text) const { CPLFree(text); }
};
using CplText = std::unique_ptr<char, CplFree>;

std::string ExportAs(const OGRSpatialReference& reference, const char* const* options) {
    char* text = nullptr;
    const OGRErr result = reference.exportToWkt(&text, options);
    const CplText owner(text);
    return result == OGRERR_NONE && text != nullptr ? text : "";
}

bool ReadTree(OGR_SRSNode& root, const char* wkt) {
    return root.importFromWkt(&wkt) == OGRERR_NONE;
}

std::string WriteTree(const OGR_SRSNode& root) {
    char* text = nullptr;
    const OGRErr result = root.exportToWkt(&text);
    const CplText owner(text);
    return result == OGRERR_NONE ? text : "";
}

/// Whether an axis counts towards the side where other systems' coordinates decrease.
/// @param axis with its two children, name and direction
bool IsReversedAxis(const OGR_SRSNode& axis) {
    const char* direction = axis.GetChild(1)->GetValue();
    return EQUAL(direction, "WEST") || EQUAL(direction, "DOWN");
}

/// Lets every pair of horizontal axes read east, north. The pair is rewritten, not removed:
/// for some projections a missing pair does not mean this order.
void UnifyAxisOrder(OGR_SRSNode& node) {
    std::vector<OGR_SRSNode*> axes;
    for (int i = 0; i < node.GetChildCount(); ++i) {
        OGR_SRSNode* child = node.GetChild(i);
        // A name may be "AXIS" as well.
        if (EQUAL(child->GetValue(), "AXIS") && child->GetChildCount() >= 2)
            axes.push_back(child);
        else
            UnifyAxisOrder(*child);
    }
    if (axes.size() != 2 || IsReversedAxis(*axes[0]) || IsReversedAxis(*axes[1]))
        return;
    axes[0]->GetChild(0)->SetValue("X");
    axes[0]->GetChild(1)->SetValue("EAST");
    axes[1]->GetChild(0)->SetValue("Y");
    axes[1]->GetChild(1)->SetValue("NORTH");
}

/// The reference without authority codes and in east, north order; nothing for systems that have no
/// classic WKT, such as three-dimensional geographic ones.
std::optional<OGRSpatialReference> InPlainForm(const OGRSpatialReference& reference) {
    const char* const options[] = {"FORMAT=WKT1_GDAL", nullptr};
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    const std::string wkt = ExportAs(reference, options);
    OGR_SRSNode root;
    if (wkt.empty() || !ReadTree(root, wkt.c_str()))
        return std::nullopt;
    root.StripNodes("AUTHORITY");
    UnifyAxisOrder(root);
    OGRSpatialReference plain;
    if (plain.importFromWkt(WriteTree(root).c_str()) != OGRERR_NONE)
        return std::nullopt;
    return plain;
}

} // namespace

bool LoadSpatialReference(OGRSpatialReference& reference, const char* text) {
    // A rejected text would leave the former content in place.
    reference.Clear();
    reference.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    // A text may name a file to read, and GDAL would wait for a pipe's writer.
    if (text == nullptr || IsPipeOrDevice(text))
        return false;
    // Texts come from files as well; none of them may make the program fetch something.
    const char* const options[] = {"ALLOW_NETWORK_ACCESS=NO", nullptr};
    if (reference.SetFromUserInput(text, options) == OGRERR_NONE)
        return true;
    // GDAL has reported the rejection already; a second report would only repeat it.
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    if (reference.importFromWkt(text) == OGRERR_NONE)
        return true;
    reference.Clear();
    return false;
}

std::optional<OGRSpatialReference> ParseSpatialReference(const char* text) {
    OGRSpatialReference reference;
    if (!LoadSpatialReference(reference, text))
        return std::nullopt;
    return reference;
}

bool IsSameReference(const OGRSpatialReference& a, const OGRSpatialReference& b) {
    if (a.IsEmpty() || b.IsEmpty())
        return false;
    const auto plainA = InPlainForm(a);
    const auto plainB = InPlainForm(b);
    if (plainA && plainB)
        return plainA->IsSame(&*plainB) != 0;
    const char* const options[] = {"IGNORE_DATA_AXIS_TO_SRS_AXIS_MAPPING=YES", nullptr};
    return a.IsSame(&b, options) != 0;
}

std::string ExportToWkt(const OGRSpatialReference& reference) {
    return ExportAs(reference, nullptr);
}

std::string ReadNodeValue(const char* wkt, const char* keyword) {
    OGR_SRSNode root;
    if (wkt == nullptr || !ReadTree(root, wkt))
        return "";
    const OGR_SRSNode* node = root.GetNode(keyword); // one with content
    return node == nullptr ? "" : node->GetChild(0)->GetValue();
}

std::string ReplaceNodeValue(const std::string& wkt, const char* keyword, const char* value) {
    OGR_SRSNode root;
    if (!ReadTree(root, wkt.c_str()))
        return "";
    OGR_SRSNode* node = root.GetNode(keyword); // one with content
    if (node == nullptr)
        return "";
    node->GetChild(0)->SetValue(value);
    return WriteTree(root);
}

} // namespace zelto

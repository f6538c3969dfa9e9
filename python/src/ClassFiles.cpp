#include "zelto/baselib/CommonFun.h"
#include "zelto/classify/ClassifiedAssistantFile.h"
#include "zelto/classify/ClassifySampleFile.h"

#include "host/files/Open.h"
#include "python/src/Area.h"
#include "python/src/Bind.h"
#include "python/src/Errors.h"

#include <array>
#include <pybind11/stl.h>
#include <tuple>

namespace py = pybind11;

namespace zelto::python {

namespace {

using Color = std::array<unsigned char, 4>;
/// Pixel value, colour and name.
using ClassTuple = std::tuple<std::int32_t, Color, std::string>;
using Entry = std::tuple<double, double, std::int32_t, std::int32_t>;
using ShapeTuple = std::pair<std::string, std::vector<double>>;

py::str NameText(const std::wstring& name) {
    return Text(CommonFun::U2M(name));
}

py::dict ReadClassFile(const std::string& path) {
    CClassifiedAssistantFile file;
    const std::wstring wide = WideText(path);
    const bool read = Run([&] {
        host::ForgetReasons();
        return file.ReadClassifiedAssistantFile(wide);
    });
    if (!read)
        Fail(path, "cannot be read");
    py::list classes;
    for (const auto& record : file.GetClasses())
        classes.append(py::make_tuple(record.m_value,
                                      py::make_tuple(record.m_color.red, record.m_color.green,
                                                     record.m_color.blue, record.m_color.alpha),
                                      NameText(record.GetName())));
    py::list entries;
    for (const auto& entry : file.GetEntries())
        entries.append(
            py::make_tuple(entry.m_first, entry.m_second, entry.m_third, entry.m_fourth));
    py::list matrix;
    for (const auto& row : file.GetChangedMatrix()) {
        py::list texts;
        for (const std::wstring& text : row)
            texts.append(NameText(text));
        matrix.append(texts);
    }
    py::dict found;
    found["version"] = file.GetVersion();
    found["classes"] = classes;
    found["entries"] = entries;
    found["matrix"] = matrix;
    return found;
}

void WriteClassFile(const std::string& path, const std::vector<ClassTuple>& classes,
                    const std::vector<Entry>& entries,
                    const std::vector<std::vector<std::string>>& matrix) {
    CClassifiedAssistantFile file;
    for (const auto& [value, color, name] : classes) {
        CClassifiedAssistantFile::ClassRecord record;
        record.m_value = value;
        record.m_color = {color[0], color[1], color[2], color[3]};
        record.SetName(WideText(name));
        file.AddClass(record);
    }
    std::vector<CClassifiedAssistantFile::EntryRecord> records;
    for (const auto& [first, second, third, fourth] : entries)
        records.push_back({first, second, third, fourth});
    file.SetEntries(records);
    CClassifiedAssistantFile::TextMatrix texts;
    for (const auto& row : matrix) {
        texts.emplace_back();
        for (const std::string& text : row)
            texts.back().push_back(WideText(text));
    }
    file.SetChangedMatrix(texts);
    const std::wstring wide = WideText(path);
    const bool written = Run([&] {
        host::ForgetReasons();
        return file.WriteClssifiedAssistantFile(wide);
    });
    if (!written)
        Fail(path, "cannot be written");
}

py::dict RecordAsDict(const CClassifySampleFile::ClassRecord& record) {
    py::list shapes;
    for (const CDrawShape* shape : record.m_sampleShapes)
        shapes.append(ShapeAsTuple(*shape));
    py::dict found;
    found["name"] = NameText(record.GetName());
    found["values"] = record.m_values;
    found["bands"] = record.m_bandCount;
    found["first"] = record.m_firstArray;
    found["second"] = record.m_secondArray;
    found["third"] = record.m_thirdArray;
    found["more_values"] = record.m_moreValues;
    found["matrix"] = record.m_matrix;
    found["shapes"] = shapes;
    return found;
}

py::list ReadSampleFile(const std::string& path) {
    CClassifySampleFile file;
    const std::wstring wide = WideText(path);
    const int read = Run([&] {
        host::ForgetReasons();
        return file.ReadClassifySampleFile(wide);
    });
    if (read != 1)
        Fail(path, "cannot be read");
    py::list classes;
    for (int i = 0; file.GetClass(i) != nullptr; ++i)
        classes.append(RecordAsDict(*file.GetClass(i)));
    return classes;
}

CClassifySampleFile::ClassRecord RecordOf(const py::dict& values) {
    CClassifySampleFile::ClassRecord record;
    record.SetName(WideText(values["name"].cast<std::string>()));
    record.m_values = values["values"].cast<std::array<std::int32_t, 3>>();
    record.m_bandCount = values["bands"].cast<std::int32_t>();
    record.m_firstArray = values["first"].cast<std::vector<double>>();
    record.m_secondArray = values["second"].cast<std::vector<double>>();
    record.m_thirdArray = values["third"].cast<std::vector<double>>();
    record.m_moreValues = values["more_values"].cast<std::array<std::int32_t, 2>>();
    record.m_matrix = values["matrix"].cast<std::vector<double>>();
    for (const auto& [kind, numbers] : values["shapes"].cast<std::vector<ShapeTuple>>()) {
        if (kind != "polygon" && kind != "rectangle" && kind != "ellipse")
            throw py::value_error("samples come from polygons, rectangles and ellipses");
        record.m_sampleShapes.push_back(MakeShape(kind, numbers).release());
    }
    record.m_hasSamples = record.m_sampleShapes.empty() ? 0 : 1;
    record.m_sampleShapeCount = static_cast<std::int32_t>(record.m_sampleShapes.size());
    return record;
}

void WriteSampleFile(const std::string& path, const std::vector<py::dict>& classes) {
    CClassifySampleFile file;
    file.SetTag(CClassifySampleFile::FILE_TAG);
    for (const py::dict& values : classes)
        file.AddClass(RecordOf(values));
    const std::wstring wide = WideText(path);
    const int written = Run([&] {
        host::ForgetReasons();
        return file.WriteClassifySampleFile(wide);
    });
    if (written != 1)
        Fail(path, "cannot be written");
}

} // namespace

void BindClassFiles(py::module_& module) {
    module.def("read_class_file", &ReadClassFile, py::arg("path"));
    module.def("write_class_file", &WriteClassFile, py::arg("path"), py::arg("classes"),
               py::arg("entries"), py::arg("matrix"));
    module.def("read_sample_file", &ReadSampleFile, py::arg("path"));
    module.def("write_sample_file", &WriteSampleFile, py::arg("path"), py::arg("classes"));
}

} // namespace zelto::python

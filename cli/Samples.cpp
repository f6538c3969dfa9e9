#include "cli/Commands.h"
#include "cli/SampleTable.h"
#include "cli/options/SharedOptions.h"
#include "host/base/Failure.h"
#include "host/base/Message.h"
#include "host/base/Printable.h"
#include "host/base/Text.h"
#include "host/files/AoiFile.h"
#include "host/files/Open.h"
#include "host/files/Output.h"
#include "host/files/Region.h"
#include "host/report/Csv.h"
#include "host/report/Json.h"
#include "host/report/SampleClasses.h"
#include "host/report/Table.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <memory>

namespace zelto::cli {

namespace {

using ClassRecord = CClassifySampleFile::ClassRecord;

struct SamplesOptions {
    std::string image;
    std::string aoi;
    std::string file;
    std::string table;
    host::LabelOptions labels;
    bool overwrite = false;
    bool csv = false;
    bool json = false;
};

void OpenImage(CRasterSource& raster, const SamplesOptions& options) {
    host::RegionOptions region;
    region.aoi = options.aoi.empty() ? options.file : options.aoi;
    host::OpenForRegion(raster, options.image, region);
}

void PrintCsv(const host::SampleClasses& classes, int bandCount) {
    std::cout << "label,class";
    for (int b = 1; b <= bandCount; ++b)
        std::cout << ",band" << b;
    std::cout << '\n';
    for (const host::SampleClass& sampleClass : classes) {
        const std::string start = host::FormatNumber(sampleClass.label) + "," +
                                  host::CsvText(host::Printable(sampleClass.name));
        std::string line;
        for (int i = 0; i < sampleClass.pixels.GetSampleSize(); ++i) {
            line = start;
            for (int b = 0; b < bandCount; ++b)
                line.append(",").append(host::FormatNumber(sampleClass.pixels.Get(i, b)));
            std::cout << line << '\n';
        }
    }
}

void PrintClasses(const host::SampleClasses& classes, int bandCount, bool asJson) {
    host::Table table({"class", "label", "shapes", "pixels", "band", "mean", "minimum", "maximum"});
    host::Json json = host::Json::array();
    for (const host::SampleClass& sampleClass : classes) {
        const host::SampleStatistics statistics = host::StatisticsOf(sampleClass.pixels, bandCount);
        const int pixels = sampleClass.pixels.GetSampleSize();
        host::Json bands = host::Json::array();
        for (int b = 0; b < bandCount && pixels > 0; ++b) {
            const auto i = static_cast<std::size_t>(b);
            table.AddRow({sampleClass.name, host::FormatNumber(sampleClass.label),
                          std::to_string(sampleClass.shapes.size()), std::to_string(pixels),
                          std::to_string(b + 1), host::FormatNumber(statistics.mean[i]),
                          host::FormatNumber(statistics.minimum[i]),
                          host::FormatNumber(statistics.maximum[i])});
            bands.push_back({{"band", b + 1},
                             {"mean", host::JsonNumber(statistics.mean[i])},
                             {"minimum", host::JsonNumber(statistics.minimum[i])},
                             {"maximum", host::JsonNumber(statistics.maximum[i])}});
        }
        json.push_back({{"name", sampleClass.name},
                        {"label", host::JsonNumber(sampleClass.label)},
                        {"shapes", sampleClass.shapes.size()},
                        {"pixels", pixels},
                        {"bands", bands}});
    }
    if (asJson)
        host::PrintJson({{"classes", json}});
    else
        table.Print();
}

/// What a reader of the numbers must know, on standard error.
void RemarkOnSamples(const host::SampleClasses& classes) {
    for (const host::SampleClass& sampleClass : classes) {
        if (sampleClass.shapesOffImage > 0)
            host::Remark(sampleClass.name + ": " + std::to_string(sampleClass.shapesOffImage) +
                         " of its shapes lie off the image");
        if (sampleClass.pixels.GetSampleSize() == 0)
            host::Remark(sampleClass.name + ": no pixels");
    }
}

void WriteSampleFile(const host::SampleClasses& classes, int bandCount, const std::string& path) {
    CClassifySampleFile file;
    file.SetTag(CClassifySampleFile::FILE_TAG);
    for (const host::SampleClass& sampleClass : classes)
        file.AddClass(host::MakeRecord(sampleClass, bandCount));
    if (file.WriteClassifySampleFile(host::Wide(path)) != 1)
        throw host::Failure(path, "cannot be written");
}

void Collect(const SamplesOptions& options) {
    if (!options.file.empty())
        host::RequireFreePath(options.file, options.overwrite, {options.image, options.aoi});
    CRasterSource raster;
    OpenImage(raster, options);
    host::SampleClasses classes = host::MakeClasses(options.aoi, options.labels, raster);
    host::CollectPixels(classes, raster, options.image);
    if (!options.file.empty())
        WriteSampleFile(classes, raster.GetBandCount(), options.file);
    if (options.csv)
        PrintCsv(classes, raster.GetBandCount());
    else
        PrintClasses(classes, raster.GetBandCount(), options.json);
    std::cout.flush();
    RemarkOnSamples(classes);
}

void ReadSampleFile(CClassifySampleFile& file, const std::string& path) {
    if (file.ReadClassifySampleFile(host::Wide(path)) != 1)
        throw host::Failure(path, host::LastReason("cannot be read"));
}

void Export(const SamplesOptions& options) {
    CClassifySampleFile file;
    ReadSampleFile(file, options.file);
    CRasterSource raster;
    OpenImage(raster, options);
    host::SampleClasses classes = host::ClassesOf(file);
    host::CollectPixels(classes, raster, options.image);
    PrintCsv(classes, raster.GetBandCount());
    std::cout.flush();
    RemarkOnSamples(classes);
}

void Import(const SamplesOptions& options) {
    host::RequireFreePath(options.file, options.overwrite, {options.table});
    int bandCount = 0;
    const host::SampleClasses classes = ReadSampleTable(options.table, bandCount);
    WriteSampleFile(classes, bandCount, options.file);
    PrintClasses(classes, bandCount, options.json);
}

host::Json NumbersAsJson(const std::vector<double>& numbers) {
    host::Json json = host::Json::array();
    for (const double number : numbers)
        json.push_back(host::JsonNumber(number));
    return json;
}

host::Json RecordAsJson(const ClassRecord& record) {
    host::Json shapes = host::Json::array();
    for (const CDrawShape* shape : record.m_sampleShapes)
        shapes.push_back(
            {{"kind", host::KindName(*shape)}, {"extent", host::JsonBox(shape->m_extent)}});
    return {{"name", host::Narrow(record.GetName())},
            {"values", record.m_values},
            {"bandCount", record.m_bandCount},
            {"firstArray", NumbersAsJson(record.m_firstArray)},
            {"secondArray", NumbersAsJson(record.m_secondArray)},
            {"thirdArray", NumbersAsJson(record.m_thirdArray)},
            {"moreValues", record.m_moreValues},
            {"matrix", NumbersAsJson(record.m_matrix)},
            {"hasSamples", record.m_hasSamples != 0},
            {"shapes", shapes}};
}

void ShowSamples(const SamplesOptions& options) {
    CClassifySampleFile file;
    ReadSampleFile(file, options.file);
    host::Json classes = host::Json::array();
    host::Table table({"class", "values", "shapes", "band", "first", "second", "third"});
    for (int i = 0; file.GetClass(i) != nullptr; ++i) {
        const ClassRecord& record = *file.GetClass(i);
        if (options.json)
            classes.push_back(RecordAsJson(record));
        const std::string values = std::to_string(record.m_values[0]) + ", " +
                                   std::to_string(record.m_values[1]) + ", " +
                                   std::to_string(record.m_values[2]);
        const std::vector<std::string> start = {host::Narrow(record.GetName()), values,
                                                std::to_string(record.m_sampleShapes.size())};
        if (record.m_thirdArray.empty())
            table.AddRow(start);
        for (std::size_t b = 0; b < record.m_thirdArray.size(); ++b)
            table.AddRow({start[0], start[1], start[2], std::to_string(b + 1),
                          host::FormatNumber(record.m_firstArray[b]),
                          host::FormatNumber(record.m_secondArray[b]),
                          host::FormatNumber(record.m_thirdArray[b])});
    }
    if (options.json)
        host::PrintJson({{"path", options.file}, {"classes", classes}});
    else
        table.Print();
}

void AddCollect(CLI::App& samples) {
    auto* collect = samples.add_subcommand("collect", "the pixels under the shapes of an area");
    auto options = std::make_shared<SamplesOptions>();
    collect->add_option("IMAGE", options->image, "raster file")->required();
    collect->add_option("--aoi", options->aoi, "area file (.aif) or any vector file")->required();
    auto* labels = collect->add_option("--labels", options->labels.labels,
                                       "class numbers of the shapes in order, or one for all; "
                                       "1,2,3 … when not given");
    collect
        ->add_option("--field", options->labels.field,
                     "attribute of the vector file that tells the class")
        ->excludes(labels);
    collect->add_option("--names", options->labels.names,
                        "names of the classes, in the order they come up");
    collect->add_option("-o,--out", options->file, "write a sample file");
    AddOverwriteOption(*collect, options->overwrite);
    auto* csv = collect->add_flag("--csv", options->csv, "print the pixels, one line each");
    collect->add_flag("--json", options->json, "print JSON")->excludes(csv);
    collect->callback([options] { Collect(*options); });
}

void AddShowExportAndImport(CLI::App& samples) {
    auto* show = samples.add_subcommand("show", "what a sample file holds");
    auto options = std::make_shared<SamplesOptions>();
    show->add_option("FILE", options->file, "sample file")->required();
    show->add_flag("--json", options->json, "print JSON");
    show->callback([options] { ShowSamples(*options); });
    auto* exporting =
        samples.add_subcommand("export", "the pixels under a sample file's shapes, as CSV");
    exporting->add_option("IMAGE", options->image, "raster file")->required();
    exporting->add_option("FILE", options->file, "sample file")->required();
    exporting->callback([options] { Export(*options); });
    auto* importing =
        samples.add_subcommand("import", "make a sample file of pixels in a CSV table");
    importing->add_option("CSV", options->table, "lines of label,class,band1,band2,…")->required();
    importing->add_option("OUT", options->file, "sample file to write, without shapes")->required();
    AddOverwriteOption(*importing, options->overwrite);
    importing->add_flag("--json", options->json, "print JSON");
    importing->callback([options] { Import(*options); });
}

} // namespace

void AddSamples(CLI::App& program) {
    auto* samples = program.add_subcommand("samples", "training pixels of a classification");
    samples->require_subcommand(1);
    AddCollect(*samples);
    AddShowExportAndImport(*samples);
    samples->footer(
        "A pixel is a sample of a shape when its top-left corner lies in it, its value in every\n"
        "band is at most two standard deviations from the band's mean in the shape, and none is\n"
        "the no-data value of the last band.\n"
        "Sample files written here hold per class the label, the number of pixels and 0, per\n"
        "band mean, minimum and maximum, the covariance matrix, and the shapes.");
}

} // namespace zelto::cli

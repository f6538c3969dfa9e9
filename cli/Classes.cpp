#include "zelto/baselib/ClassifyDisplayTable.h"
#include "zelto/classify/ClassifiedAssistantFile.h"
#include "zelto/raster/RasterSource.h"

#include "cli/Commands.h"
#include "cli/options/SharedOptions.h"
#include "host/base/Failure.h"
#include "host/base/Message.h"
#include "host/base/Printable.h"
#include "host/base/Text.h"
#include "host/files/Open.h"
#include "host/files/Output.h"
#include "host/report/ClassFacts.h"
#include "host/report/ClassTable.h"
#include "host/report/Csv.h"

#include <CLI/CLI.hpp>

#include <filesystem>
#include <iostream>
#include <memory>
#include <system_error>

namespace zelto::cli {

namespace {

struct ClassesOptions {
    std::string file;
    std::string table;
    std::string image;
    bool overwrite = false;
    bool csv = false;
    bool json = false;
};

std::vector<host::ClassFacts> Facts(const CClassifiedAssistantFile& file) {
    std::vector<host::ClassFacts> facts;
    for (const auto& record : file.GetClasses())
        facts.push_back({static_cast<double>(record.m_value),
                         {record.m_color.red, record.m_color.green, record.m_color.blue},
                         host::Narrow(record.GetName())});
    return facts;
}

CClassifiedAssistantFile Read(const std::string& path) {
    CClassifiedAssistantFile file;
    if (!file.ReadClassifiedAssistantFile(host::Wide(path)))
        throw host::Failure(path, host::LastReason("cannot be read"));
    return file;
}

/// In the form that `classes write` reads.
void PrintClassTable(const std::vector<host::ClassFacts>& classes) {
    std::cout << "value,red,green,blue,name\n";
    for (const host::ClassFacts& each : classes)
        std::cout << host::FormatNumber(each.value) << ',' << each.color[0] << ',' << each.color[1]
                  << ',' << each.color[2] << ',' << host::CsvText(host::Printable(each.name))
                  << '\n';
}

void ShowClasses(const ClassesOptions& options) {
    const auto classes = Facts(Read(options.file));
    if (options.json)
        host::PrintJson({{"path", options.file}, {"classes", host::ToJson(classes)}});
    else if (options.csv)
        PrintClassTable(classes);
    else
        host::PrintClasses(classes);
}

/// The image that an assistant file belongs to shows its classes when it is opened.
void CheckWithImage(const std::string& image, std::size_t classCount) {
    CRasterSource source;
    source.SetForDisplay(true);
    host::OpenOrFail(source, image);
    const CClassifyDisplayTable* table = source.GetClassifyDisplayTable();
    if (table == nullptr)
        throw host::Failure(image, "opens without classes");
    if (static_cast<std::size_t>(table->GetItemCount()) != classCount)
        throw host::Failure(image, "opens with " + std::to_string(table->GetItemCount()) +
                                       " classes instead of " + std::to_string(classCount));
}

/// The file that --image is to be checked with is the one that is written, or none.
void RequireAssistantOf(const ClassesOptions& options) {
    std::error_code ignored;
    const std::filesystem::path expected = host::AssistantOf(options.image);
    if (std::filesystem::weakly_canonical(options.file, ignored) !=
        std::filesystem::weakly_canonical(expected, ignored))
        throw host::UsageError("--image: '" + options.image + "' takes its classes from '" +
                               expected.string() + "', not from '" + options.file + "'");
}

void Write(const ClassesOptions& options) {
    if (options.file.empty() && options.image.empty())
        throw host::UsageError("classes write: give the assistant file or the image it belongs to");
    if (!options.file.empty() && !options.image.empty())
        RequireAssistantOf(options);
    const std::string path = options.file.empty() ? host::AssistantOf(options.image) : options.file;
    host::RequireFreePath(path, options.overwrite, {options.table, options.image});
    CClassifiedAssistantFile file;
    file.SetClasses(host::ReadClassTable(options.table));
    if (!file.WriteClssifiedAssistantFile(host::Wide(path)))
        throw host::Failure(path, "cannot be written");
    if (!options.image.empty())
        CheckWithImage(options.image, file.GetClasses().size());
    host::Confirm(path + ": " + std::to_string(file.GetClasses().size()) + " classes");
}

void CheckClasses(const ClassesOptions& options) {
    const std::size_t count = Read(host::AssistantOf(options.image)).GetClasses().size();
    CheckWithImage(options.image, count);
    host::Confirm(options.image + ": opens with " + std::to_string(count) + " classes");
}

} // namespace

void AddClasses(CLI::App& program) {
    auto* classes =
        program.add_subcommand("classes", "show, write and check files of class colours");
    classes->require_subcommand(1);
    classes->footer("A classified assistant file (.acf) stands beside its image under the image's\n"
                    "name and gives each class its pixel value, colour and name.");
    auto options = std::make_shared<ClassesOptions>();

    auto* show = classes->add_subcommand("show", "the classes of an assistant file");
    show->add_option("ACF", options->file)->required();
    auto* json = show->add_flag("--json", options->json, "print JSON");
    show->add_flag("--csv", options->csv, "print the table that `classes write` reads")
        ->excludes(json);
    show->callback([options] { ShowClasses(*options); });

    auto* write = classes->add_subcommand("write", "make an assistant file from a CSV table");
    write->add_option("CSV", options->table, "lines of value,red,green,blue,name")->required();
    write->add_option("ACF", options->file, "default: the image's name with .acf");
    write->add_option("--image", options->image, "check that this image opens with the classes");
    AddOverwriteOption(*write, options->overwrite);
    write->callback([options] { Write(*options); });

    auto* check = classes->add_subcommand("check", "whether an image opens with its classes");
    check->add_option("IMAGE", options->image)->required();
    check->callback([options] { CheckClasses(*options); });
}

} // namespace zelto::cli

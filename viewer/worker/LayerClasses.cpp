#include "viewer/worker/LayerClasses.h"

#include "zelto/classify/ClassifiedAssistantFile.h"
#include "zelto/raster/RasterBand.h"

#include "host/report/ClassTable.h"
#include "viewer/worker/Texts.h"

#include <gdal_priv.h>

#include <QCoreApplication>
#include <algorithm>
#include <cmath>

namespace zelto::view {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(LayerClasses)
};

unsigned char Byte(int value) {
    return static_cast<unsigned char>(value);
}

CRgbaColor EngineColor(const QColor& color) {
    return {Byte(color.red()), Byte(color.green()), Byte(color.blue()), Byte(color.alpha())};
}

} // namespace

std::vector<ClassColor> DescribeClasses(const CClassifyDisplayTable* table) {
    std::vector<ClassColor> classes;
    for (int i = 0; table != nullptr && i < table->GetItemCount(); ++i) {
        const CClassifyDisplayItem& item = *table->GetItem(i);
        classes.push_back({item.m_low, item.m_high,
                           QColor(item.m_color.red, item.m_color.green, item.m_color.blue),
                           FromWide(item.m_name)});
    }
    return classes;
}

/// The entries of a colour table as classes of one value each.
std::vector<ClassColor> DescribePalette(const CRasterBand* band) {
    std::vector<ClassColor> entries;
    const GDALColorTable* table = band != nullptr ? band->GetColorTable() : nullptr;
    for (int i = 0; table != nullptr && i < table->GetColorEntryCount(); ++i) {
        GDALColorEntry entry{};
        table->GetColorEntryAsRGB(i, &entry);
        entries.push_back(
            {i - 0.5, i + 0.5,
             QColor(std::clamp<int>(entry.c1, 0, 255), std::clamp<int>(entry.c2, 0, 255),
                    std::clamp<int>(entry.c3, 0, 255), std::clamp<int>(entry.c4, 0, 255)),
             QString()});
    }
    return entries;
}

CClassifyDisplayTable TableOf(const std::vector<ClassColor>& classes) {
    CClassifyDisplayTable table(static_cast<int>(classes.size()));
    for (const ClassColor& each : classes)
        table.AddClassifyItem({EngineColor(each.color), each.low, each.high, Wide(each.name)});
    return table;
}

QString ClassFileOf(const QString& image) {
    return QString::fromStdString(host::AssistantOf(image.toStdString()));
}

QString WriteClasses(const QString& path, const std::vector<ClassColor>& classes) {
    std::vector<CClassifiedAssistantFile::ClassRecord> records;
    for (const ClassColor& each : classes) {
        records.emplace_back();
        records.back().m_value =
            static_cast<std::int32_t>(std::lround((each.low + each.high) / 2.0));
        records.back().m_color = EngineColor(each.color);
        records.back().SetName(Wide(each.name));
    }
    CClassifiedAssistantFile file;
    file.SetClasses(records);
    CGISDataSource::ClearLastErrorText();
    if (!file.WriteClssifiedAssistantFile(Wide(path)))
        return ReasonOr(path + ": " + Texts::tr("cannot be written"));
    return {};
}

} // namespace zelto::view

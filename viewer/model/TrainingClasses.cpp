#include "viewer/model/TrainingClasses.h"

#include <algorithm>

namespace zelto::view {

namespace {

/// Colours that are told apart on any image, in the order in which classes get them.
const QColor COLORS[] = {QColor(230, 159, 0),  QColor(86, 180, 233),  QColor(0, 158, 115),
                         QColor(240, 228, 66), QColor(204, 121, 167), QColor(213, 94, 0),
                         QColor(0, 114, 178),  QColor(160, 110, 70)};

} // namespace

const TrainingClass* TrainingClasses::Find(int number) const {
    const auto found = std::find_if(m_classes.begin(), m_classes.end(),
                                    [=](const TrainingClass& c) { return c.number == number; });
    return found != m_classes.end() ? &*found : nullptr;
}

int TrainingClasses::Add(const QString& name) {
    TrainingClass added;
    added.number = m_nextNumber++;
    added.name = name.isEmpty() ? tr("Class %1").arg(added.number) : name;
    added.color = COLORS[static_cast<std::size_t>(added.number - 1) % std::size(COLORS)];
    m_classes.push_back(added);
    m_current = added.number;
    emit ClassesChanged();
    return added.number;
}

void TrainingClasses::Rename(int number, const QString& name) {
    for (TrainingClass& each : m_classes)
        if (each.number == number && each.name != name && !name.isEmpty()) {
            each.name = name;
            emit ClassesChanged();
            return;
        }
}

void TrainingClasses::SetColor(int number, const QColor& color) {
    for (TrainingClass& each : m_classes)
        if (each.number == number)
            each.color = color;
    emit ClassesChanged();
}

void TrainingClasses::Remove(int number) {
    std::erase_if(m_classes, [=](const TrainingClass& c) { return c.number == number; });
    std::erase_if(m_spectra, [=](const ClassSpectrum& s) { return s.number == number; });
    if (m_current == number)
        m_current = m_classes.empty() ? 0 : m_classes.back().number;
    emit ClassesChanged();
    emit SpectraChanged();
}

void TrainingClasses::SetSpectra(const std::vector<ClassSpectrum>& spectra) {
    m_spectra = spectra;
    emit SpectraChanged();
}

} // namespace zelto::view

#pragma once

#include <QColor>
#include <QObject>
#include <QString>
#include <vector>

namespace zelto::view {

/// A class of a supervised classification.
struct TrainingClass {
    int number = 0; ///< from 1; shapes refer to it
    QString name;
    QColor color;
};

/// What is known of the pixels under a class's shapes.
struct ClassSpectrum {
    int number = 0;
    int pixels = 0;
    std::vector<double> mean; ///< one per band
    std::vector<double> deviation;
};

/// The classes that shapes are collected for.
class TrainingClasses : public QObject {
    Q_OBJECT

  public:
    using QObject::QObject;

    const std::vector<TrainingClass>& All() const { return m_classes; }
    const TrainingClass* Find(int number) const;
    /// With a name and a colour of its own; answers its number.
    int Add(const QString& name = {});
    void Rename(int number, const QString& name);
    void SetColor(int number, const QColor& color);
    void Remove(int number);
    /// The class that shapes are given next; 0 without one.
    int Current() const { return m_current; }
    void SetCurrent(int number) { m_current = number; }

    const std::vector<ClassSpectrum>& Spectra() const { return m_spectra; }
    void SetSpectra(const std::vector<ClassSpectrum>& spectra);

  signals:
    void ClassesChanged();
    void SpectraChanged();

  private:
    std::vector<TrainingClass> m_classes;
    std::vector<ClassSpectrum> m_spectra;
    int m_nextNumber = 1;
    int m_current = 0;
};

} // namespace zelto::view

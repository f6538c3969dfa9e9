#pragma once

#include <QWidget>

class QListWidget;
class QListWidgetItem;
class QLabel;

namespace zelto::view {

class Document;
struct Layer;
struct LayersMemory;

/// The list of layers, topmost first: a check mark shows or hides, a drag moves.
class LayersPanel : public QWidget {
    Q_OBJECT

  public:
    LayersPanel(Document& document, QWidget* parent = nullptr);

    void AddToolBarActions(const QList<QAction*>& actions);
    void ShowMemory(const LayersMemory& memory);

  private:
    void Rebuild();
    void Fill(QListWidgetItem& item, const Layer& layer) const;
    void SelectCurrent();
    void TakeOrder();

    Document& m_document;
    QListWidget* m_list;
    QLabel* m_memory;
    bool m_isFilling = false;
};

} // namespace zelto::view

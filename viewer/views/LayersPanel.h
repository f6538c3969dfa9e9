#pragma once

#include <QWidget>

class QListWidget;
class QListWidgetItem;
class QLabel;

namespace zelto::view {

class Document;
struct Layer;

/// The list of layers, topmost first: a check mark shows or hides, a drag moves.
class LayersPanel : public QWidget {
    Q_OBJECT

  public:
    LayersPanel(Document& document, QWidget* parent = nullptr);

    void AddToolBarActions(const QList<QAction*>& actions);

  private:
    void Rebuild();
    void Fill(QListWidgetItem& item, const Layer& layer) const;
    void SelectCurrent();
    void TakeOrder();

    Document& m_document;
    QListWidget* m_list;
    bool m_isFilling = false;
};

} // namespace zelto::view

#pragma once

#include <QQuickPaintedItem>

#include <functional>

namespace ostrel {

// The wheel a Qt Quick picker opens below itself: a painted list of rows, the current one
// highlighted and kept in view, of which a few show at a time. Its rows come from the picker
// (a count and a title for each row), so a long list (every country, every day in a range) is
// never built as items.
//
// A click on a row chooses it (rowClicked); a drag or the mouse wheel scrolls without choosing.
// The picker keeps the keyboard focus and steps the current row for Up and Down
// (stepCurrentRow, currentRowChanged), as turning a wheel does.
//
// Lives on the GUI thread; owned by its QObject parent (the picker), shown in the window's
// content item while open.
class OSTQuickPickerWheel final : public QQuickPaintedItem {
    Q_OBJECT

public:
    using RowTitle = std::function<QString(qsizetype row)>;

    OSTQuickPickerWheel(qsizetype rowCount, RowTitle title, Qt::Alignment rowAlignment, QQuickItem *parent = nullptr);

    qsizetype rowCount() const { return m_rowCount; }
    QString titleAtRow(qsizetype row) const;
    qsizetype currentRow() const { return m_currentRow; }
    // Moves the highlight without telling anyone, scrolling the row into view.
    void setCurrentRow(qsizetype row);
    // Moves the current row by `steps` within the rows and tells of the change.
    void stepCurrentRow(qsizetype steps);

    qreal rowHeight() const;
    // The row at `y` in the wheel's own coordinates, -1 below the last row.
    qsizetype rowAt(qreal y) const;
    // How far the rows are scrolled up, in pixels.
    qreal scrollOffset() const { return m_scrollOffset; }
    // The height that shows the wheel's usual number of rows.
    qreal naturalHeight() const;

    void paint(QPainter *painter) override;

signals:
    void currentRowChanged(qsizetype row);
    void rowClicked(qsizetype row);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    void scrollTo(qreal offset);
    void scrollRowIntoView(qsizetype row);

    const qsizetype m_rowCount;
    const RowTitle m_title;
    const Qt::Alignment m_rowAlignment;
    qsizetype m_currentRow = 0;
    qreal m_scrollOffset = 0;
    qreal m_pressY = 0;
    qreal m_pressOffset = 0;
    bool m_dragging = false;
};

} // namespace ostrel

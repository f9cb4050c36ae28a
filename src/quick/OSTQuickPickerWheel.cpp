#include "quick/OSTQuickPickerWheel.h"

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QWheelEvent>
#include <QPainter>
#include <QPalette>
#include <QStyleHints>

#include <algorithm>
#include <cmath>

namespace ostrel {

namespace {

constexpr int visibleRows = 6;
constexpr qreal rowPadding = 6;
constexpr qreal textInset = 8;
// A notch of a mouse wheel (120 eighths of a degree) scrolls one row.
constexpr qreal eighthsOfDegreePerRow = 120;

} // namespace

OSTQuickPickerWheel::OSTQuickPickerWheel(qsizetype rowCount, RowTitle title, Qt::Alignment rowAlignment,
                                         QQuickItem *parent)
    : QQuickPaintedItem(parent),
      m_rowCount(std::max<qsizetype>(rowCount, 0)),
      m_title(std::move(title)),
      m_rowAlignment(rowAlignment)
{
    setAcceptedMouseButtons(Qt::LeftButton);
    setOpaquePainting(true);
    setHeight(naturalHeight());
}

QString OSTQuickPickerWheel::titleAtRow(qsizetype row) const
{
    return row >= 0 && row < m_rowCount && m_title ? m_title(row) : QString();
}

qreal OSTQuickPickerWheel::rowHeight() const
{
    return std::ceil(QFontMetricsF(QGuiApplication::font()).height() + 2 * rowPadding);
}

qreal OSTQuickPickerWheel::naturalHeight() const
{
    return rowHeight() * visibleRows;
}

qsizetype OSTQuickPickerWheel::rowAt(qreal y) const
{
    const auto row = qsizetype(std::floor((y + m_scrollOffset) / rowHeight()));
    return row >= 0 && row < m_rowCount ? row : -1;
}

void OSTQuickPickerWheel::setCurrentRow(qsizetype row)
{
    if (row < 0 || row >= m_rowCount)
        return;
    m_currentRow = row;
    scrollRowIntoView(row);
    update();
}

void OSTQuickPickerWheel::stepCurrentRow(qsizetype steps)
{
    if (m_rowCount == 0)
        return;
    const qsizetype row = std::clamp<qsizetype>(m_currentRow + steps, 0, m_rowCount - 1);
    if (row == m_currentRow)
        return;
    setCurrentRow(row);
    emit currentRowChanged(row);
}

void OSTQuickPickerWheel::scrollTo(qreal offset)
{
    const qreal maximum = std::max<qreal>(0, m_rowCount * rowHeight() - height());
    m_scrollOffset = std::clamp<qreal>(offset, 0, maximum);
    update();
}

void OSTQuickPickerWheel::scrollRowIntoView(qsizetype row)
{
    const qreal top = row * rowHeight();
    if (top < m_scrollOffset)
        scrollTo(top);
    else if (top + rowHeight() > m_scrollOffset + height())
        scrollTo(top + rowHeight() - height());
}

void OSTQuickPickerWheel::paint(QPainter *painter)
{
    const QPalette palette = QGuiApplication::palette();
    painter->fillRect(boundingRect(), palette.color(QPalette::Base));
    painter->setFont(QGuiApplication::font());
    const qreal rowSize = rowHeight();
    const qsizetype first = std::max<qsizetype>(0, qsizetype(m_scrollOffset / rowSize));
    for (qsizetype row = first; row < m_rowCount; ++row) {
        const QRectF rowRect(0, row * rowSize - m_scrollOffset, width(), rowSize);
        if (rowRect.top() >= height())
            break;
        const bool current = row == m_currentRow;
        if (current)
            painter->fillRect(rowRect, palette.color(QPalette::Highlight));
        painter->setPen(palette.color(current ? QPalette::HighlightedText : QPalette::Text));
        // A country row's code column ends in a tab.
        painter->drawText(rowRect.adjusted(textInset, 0, -textInset, 0), int(m_rowAlignment) | Qt::TextExpandTabs,
                          titleAtRow(row));
    }
}

void OSTQuickPickerWheel::mousePressEvent(QMouseEvent *event)
{
    m_pressY = event->position().y();
    m_pressOffset = m_scrollOffset;
    m_dragging = false;
    event->accept();
}

void OSTQuickPickerWheel::mouseMoveEvent(QMouseEvent *event)
{
    const qreal distance = event->position().y() - m_pressY;
    if (!m_dragging && std::abs(distance) >= QGuiApplication::styleHints()->startDragDistance())
        m_dragging = true;
    if (m_dragging)
        scrollTo(m_pressOffset - distance);
}

void OSTQuickPickerWheel::mouseReleaseEvent(QMouseEvent *event)
{
    if (m_dragging) {
        m_dragging = false;
        return;
    }
    const qsizetype row = rowAt(event->position().y());
    if (row < 0)
        return;
    setCurrentRow(row);
    emit rowClicked(row);
}

void OSTQuickPickerWheel::wheelEvent(QWheelEvent *event)
{
    scrollTo(m_scrollOffset - event->angleDelta().y() / eighthsOfDegreePerRow * rowHeight());
    event->accept();
}

} // namespace ostrel

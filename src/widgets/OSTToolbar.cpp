#include "widgets/OSTToolbar.h"

#include <QAction>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

constexpr int translucentAlpha = 200;

} // namespace

OSTToolbar::OSTToolbar(const OSTToolbarSettings &settings, QWidget *parent)
    : QToolBar(parent)
{
    setMovable(false);
    setFloatable(false);
    m_cancelAction = addAction(settings.cancelText, this, &OSTToolbar::cancelTapped);
    auto *flexibleSpace = new QWidget(this);
    flexibleSpace->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    addWidget(flexibleSpace);
    m_doneAction = addAction(settings.acceptText, this, &OSTToolbar::doneTapped);

    m_barStyle = settings.barStyle;
    m_translucent = settings.translucent;
    applyBarStyle();
    adjustSize();
}

void OSTToolbar::cancelTapped()
{
    if (m_cancelBlock)
        m_cancelBlock();
}

void OSTToolbar::doneTapped()
{
    if (m_doneBlock)
        m_doneBlock();
}

void OSTToolbar::applyBarStyle()
{
    if (m_barStyle == BarStyle::Default)
        return;
    QColor background(Qt::black);
    if (m_translucent) {
        background.setAlpha(translucentAlpha);
        setAttribute(Qt::WA_TranslucentBackground);
    }
    QPalette barPalette = palette();
    barPalette.setColor(QPalette::Window, background);
    barPalette.setColor(QPalette::Button, background);
    barPalette.setColor(QPalette::ButtonText, Qt::white);
    barPalette.setColor(QPalette::WindowText, Qt::white);
    setPalette(barPalette);
    setAutoFillBackground(true);
}

} // namespace ostrel

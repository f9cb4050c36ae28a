#include "input/OSTToolbar.h"

#include "core/OSTDictionaryHelpers.h"

#include <QAction>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

constexpr int translucentAlpha = 200;

} // namespace

OSTToolbar::OSTToolbar(const QVariantMap &properties, QWidget *parent)
    : QToolBar(parent)
{
    setMovable(false);
    setFloatable(false);
    m_cancelAction = addAction(ost_stringForKey(properties, u"cancelText"_s).value_or(u"Cancel"_s), this,
                               &OSTToolbar::cancelTapped);
    auto *flexibleSpace = new QWidget(this);
    flexibleSpace->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    addWidget(flexibleSpace);
    m_doneAction = addAction(ost_stringForKey(properties, u"acceptText"_s).value_or(u"Done"_s), this,
                             &OSTToolbar::doneTapped);

    const QString style = ost_stringForKey(properties, u"barStyle"_s).value_or(u"default"_s);
    m_barStyle = style == u"default"_s ? BarStyle::Default : BarStyle::Black;
    m_translucent = style == u"translucent"_s;
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

#include "input/OSTButton.h"

#include "core/OSTDictionaryHelpers.h"
#include "experience/OSTAction.h"
#include "input/OSTValidationItemModel.h"
#include "render/OSTBackgroundView.h"
#include "render/OSTImageView.h"
#include "render/OSTViewEffect.h"

#include <QKeyEvent>
#include <QPainter>
#include <QTextDocument>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

qreal alphaWithProperties(const QVariantMap &properties)
{
    const std::optional<double> alpha = ost_finiteDouble(ost_numberForKey(properties, u"alpha"_s));
    return std::clamp(alpha.value_or(1.0), 0.0, 1.0);
}

// A state's title and text look; the alignment is always the normal state's, as the title is
// one label whatever the state.
OSTButton::StateLook stateLook(QVariantMap state, const QVariantMap &normal)
{
    const QString alignmentKey = u"alignment"_s;
    state.remove(alignmentKey);
    if (normal.contains(alignmentKey))
        state.insert(alignmentKey, normal.value(alignmentKey));
    return {ost_stringForKey(state, u"text"_s).value_or(QString()), OSTTextAttributes(state)};
}

} // namespace

OSTButton *OSTButton::create(const QRect &frame, const QVariantMap &properties, const QString &name,
                             QWidget *parent)
{
    const auto states = ost_dictionaryForKey(properties, u"states"_s);
    if (!states)
        return nullptr;
    return new OSTButton(frame, properties, *states, name, parent);
}

OSTButton::OSTButton(const QRect &frame, const QVariantMap &properties, const QVariantMap &states,
                     const QString &name, QWidget *parent)
    : QAbstractButton(parent), m_name(name), m_titleLayer(new QWidget(this))
{
    setGeometry(frame);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_NoSystemBackground);
    const QVariantMap normal = ost_mergeIntoDictionary(ost_dictionaryForKey(states, u"normal"_s).value_or(QVariantMap()), properties);
    m_normalLook = stateLook(normal, normal);
    m_normalBackground = addBackground(normal);
    if (const auto pressed = ost_dictionaryForKey(states, u"pressed"_s)) {
        const QVariantMap merged = ost_mergeIntoDictionary(*pressed, normal);
        m_pressedLook = stateLook(merged, normal);
        m_highlightedBackground = addBackground(merged);
    }
    if (const auto disabled = ost_dictionaryForKey(states, u"disabled"_s)) {
        const QVariantMap merged = ost_mergeIntoDictionary(*disabled, normal);
        m_disabledLook = stateLook(merged, normal);
        m_disabledBackground = addBackground(merged);
    }
    OSTViewEffect::applyTo(*this, m_normalBackground->container(), alphaWithProperties(properties),
                           ost_objectShadowWithProperties(normal));
    // The state backgrounds are child widgets, which paint over their parent; the title and the
    // focus frame go on a transparent layer above them so that an opaque background cannot hide them.
    m_titleLayer->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_titleLayer->setGeometry(rect());
    m_titleLayer->installEventFilter(this);
    m_titleLayer->raise();

    // The title doubles as the accessible name; "&" would otherwise make a keyboard shortcut.
    setText(QString(m_normalLook.title).replace(u"&"_s, u"&&"_s));
    if (m_normalLook.title.isEmpty())
        setAccessibleName(name);
    if (const auto onClick = ost_dictionaryForKey(properties, u"onClick"_s))
        m_action = std::make_shared<const OSTAction>(*onClick);
    m_toggle = ost_stringForKey(properties, u"buttonType"_s) == u"toggle"_s;
    setCheckable(m_toggle);

    connect(this, &QAbstractButton::pressed, this, &OSTButton::updateBackgrounds);
    connect(this, &QAbstractButton::released, this, &OSTButton::updateBackgrounds);
    connect(this, &QAbstractButton::toggled, this, &OSTButton::updateBackgrounds);
    connect(this, &QAbstractButton::clicked, this, &OSTButton::handleClick);
    updateBackgrounds();
}

OSTButton::~OSTButton() = default;

OSTImageView *OSTButton::addBackground(const QVariantMap &properties)
{
    // The button casts the shadow itself: a background's own would be clipped to the button.
    auto *background = new OSTImageView(rect(), ost_propertiesWithoutObjectShadow(properties), this);
    background->lower();
    return background;
}

bool OSTButton::showsPressed() const
{
    return (isDown() || isChecked()) && m_highlightedBackground;
}

void OSTButton::updateBackgrounds()
{
    const bool disabled = !isEnabled();
    const bool pressed = showsPressed();
    if (m_normalBackground)
        m_normalBackground->setVisible(!pressed && !(m_disabledBackground && disabled));
    if (m_highlightedBackground)
        m_highlightedBackground->setVisible(!disabled && pressed);
    if (m_disabledBackground)
        m_disabledBackground->setVisible(disabled);
    update();
}

const OSTButton::StateLook &OSTButton::currentLook() const
{
    if (!isEnabled() && m_disabledLook)
        return *m_disabledLook;
    if ((isDown() || isChecked()) && m_pressedLook)
        return *m_pressedLook;
    return m_normalLook;
}

QString OSTButton::currentTitle() const
{
    return currentLook().title;
}

void OSTButton::paintEvent(QPaintEvent *)
{
    // Everything the button draws itself lies on the title layer (see the constructor).
}

bool OSTButton::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_titleLayer || event->type() != QEvent::Paint)
        return QAbstractButton::eventFilter(watched, event);
    paintTitleLayer();
    return true;
}

void OSTButton::paintTitleLayer()
{
    const StateLook &look = currentLook();
    QPainter painter(m_titleLayer);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!look.title.isEmpty())
        look.attributes.paint(painter, titleDocument(), QRectF(rect()));
    if (hasFocus()) {
        // The frame follows the shown background's corners, one pixel in, so it stays inside
        // a rounded button instead of squaring off its corners.
        const qreal radius = std::max<qreal>(0, shownBackgroundCornerRadius() - 1);
        painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), radius, radius);
    }
}

qreal OSTButton::shownBackgroundCornerRadius() const
{
    for (const OSTImageView *background : {m_disabledBackground, m_highlightedBackground, m_normalBackground}) {
        if (background && background->isVisibleTo(this))
            return background->container()->cornerRadius();
    }
    return 0;
}

QTextDocument &OSTButton::titleDocument()
{
    const StateLook &look = currentLook();
    if (!m_titleDocument || m_titleDocumentLook != &look || m_titleDocumentWidth != width()) {
        m_titleDocument = look.attributes.layOut(look.title, width(), font());
        m_titleDocumentLook = &look;
        m_titleDocumentWidth = width();
    }
    return *m_titleDocument;
}

void OSTButton::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        click();
        return;
    }
    QAbstractButton::keyPressEvent(event);
}

void OSTButton::changeEvent(QEvent *event)
{
    QAbstractButton::changeEvent(event);
    if (event->type() == QEvent::EnabledChange) {
        // Qt drops the clicks on a disabled widget; a disabled button lets them through to the
        // screen beneath, which counts them as taps and shows why the button is off.
        setAttribute(Qt::WA_TransparentForMouseEvents, !isEnabled());
        updateBackgrounds();
    }
    else if (event->type() == QEvent::FontChange)
        m_titleDocument.reset();
}

void OSTButton::resizeEvent(QResizeEvent *event)
{
    QAbstractButton::resizeEvent(event);
    for (OSTImageView *background : {m_normalBackground, m_highlightedBackground, m_disabledBackground})
        if (background)
            background->setGeometry(rect());
    m_titleLayer->setGeometry(rect());
}

void OSTButton::handleClick()
{
    if (m_toggle) {
        updateToggleValidity();
        if (const auto itemModel = model())
            itemModel->valueChanged();
    }
    emit tapped(this);
}

void OSTButton::updateToggleValidity()
{
    if (const auto itemModel = model())
        itemModel->setValid(itemModel->isOptional() || isChecked());
}

void OSTButton::modelDidChange()
{
    if (m_toggle)
        updateToggleValidity();
}

QVariant OSTButton::value() const
{
    return m_toggle ? QVariant(isChecked()) : QVariant();
}

void OSTButton::setValue(const QVariant &value)
{
    if (!value.canConvert<bool>() || !value.isValid())
        return;
    setChecked(value.toBool());
    if (const auto itemModel = model())
        itemModel->valueChanged();
}

} // namespace ostrel

#include "widgets/OSTButton.h"

#include "experience/OSTAction.h"
#include "widgets/OSTBackgroundView.h"
#include "widgets/OSTImageView.h"
#include "widgets/OSTViewEffect.h"

#include <QKeyEvent>
#include <QPainter>

using namespace Qt::StringLiterals;

namespace ostrel {

OSTButton *OSTButton::create(const QRect &frame, std::shared_ptr<const OSTButtonDescription> description,
                             QWidget *parent)
{
    if (!description || !description->states())
        return nullptr;
    return new OSTButton(frame, std::move(description), parent);
}

OSTButton::OSTButton(const QRect &frame, std::shared_ptr<const OSTButtonDescription> description, QWidget *parent)
    : QAbstractButton(parent),
      m_description(std::move(description)),
      m_buttonPainter(*m_description->states()),
      m_titleLayer(new QWidget(this))
{
    setGeometry(frame);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_NoSystemBackground);
    const OSTButtonDescription::States &states = *m_description->states();
    m_normalBackground = addBackground(*states.normal.background);
    if (states.pressed)
        m_highlightedBackground = addBackground(*states.pressed->background);
    if (states.disabled)
        m_disabledBackground = addBackground(*states.disabled->background);
    OSTViewEffect::applyTo(*this, m_normalBackground->container(), m_description->buttonAlpha(),
                           m_description->buttonShadow());
    // The state backgrounds are child widgets, which paint over their parent; the title and the
    // focus frame go on a transparent layer above them so that an opaque background cannot hide them.
    m_titleLayer->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_titleLayer->setGeometry(rect());
    m_titleLayer->installEventFilter(this);
    m_titleLayer->raise();

    // The title doubles as the accessible name; "&" would otherwise make a keyboard shortcut.
    const QString &normalTitle = m_buttonPainter.title(OSTButtonPainter::State::Normal);
    setText(QString(normalTitle).replace(u"&"_s, u"&&"_s));
    if (normalTitle.isEmpty())
        setAccessibleName(name());
    setCheckable(isToggle());

    connect(this, &QAbstractButton::pressed, this, &OSTButton::updateBackgrounds);
    connect(this, &QAbstractButton::released, this, &OSTButton::updateBackgrounds);
    connect(this, &QAbstractButton::toggled, this, &OSTButton::updateBackgrounds);
    connect(this, &QAbstractButton::clicked, this, &OSTButton::handleClick);
    updateBackgrounds();
}

OSTButton::~OSTButton() = default;

OSTImageView *OSTButton::addBackground(const OSTImageDescription &background)
{
    // The description's backgrounds have no shadow: the button casts it, as a background's own
    // would be clipped to the button.
    auto *view = new OSTImageView(rect(), background, this);
    view->lower();
    return view;
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

OSTButtonPainter::State OSTButton::shownState() const
{
    return m_buttonPainter.shownState(isEnabled() ? OSTButtonPainter::Enablement::Enabled : OSTButtonPainter::Enablement::Disabled,
                                      isDown() || isChecked() ? OSTButtonPainter::Press::Pressed
                                                              : OSTButtonPainter::Press::Released);
}

QString OSTButton::currentTitle() const
{
    return m_buttonPainter.title(shownState());
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
    QPainter painter(m_titleLayer);
    m_buttonPainter.paintTitle(painter, shownState(), QRectF(rect()), font());
    if (hasFocus())
        OSTButtonPainter::paintFocusFrame(painter, size(), shownBackgroundCornerRadius(), palette().color(QPalette::Highlight));
}

qreal OSTButton::shownBackgroundCornerRadius() const
{
    for (const OSTImageView *background : {m_disabledBackground, m_highlightedBackground, m_normalBackground}) {
        if (background && background->isVisibleTo(this))
            return background->container()->cornerRadius();
    }
    return 0;
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
    toggleTapped();
    emit tapped(this);
}

void OSTButton::joinGroup(QObject &group, std::function<void()> tapped)
{
    disconnect(this, &OSTButton::tapped, nullptr, nullptr);
    setCheckable(true);
    connect(this, &OSTButton::tapped, &group, [this, tapped = std::move(tapped)] {
        // The click has already toggled the button; the group decides instead.
        setChecked(!isChecked());
        tapped();
    });
}

} // namespace ostrel

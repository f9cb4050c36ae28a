#pragma once

// Small inputs and a screen view that adopt the validation interfaces the way the real widgets
// do: next to a Qt widget base, owned by their Qt parent or by the test.

#include "model/OSTValidationGroup.h"
#include "model/OSTValidationGroupModel.h"
#include "model/OSTValidationItem.h"
#include "model/OSTValidationItemModel.h"

#include <QByteArray>
#include <QJsonDocument>
#include <QLineEdit>
#include <QString>
#include <QVariantMap>
#include <QWidget>

#include <memory>
#include <optional>

namespace ostrel::test {

// Binds a new item model with `properties` to `input` as a flow's validation manager does.
inline std::shared_ptr<OSTValidationItemModel> bindModel(OSTValidationItem &input, const QVariantMap &properties)
{
    auto model = std::make_shared<OSTValidationItemModel>(
        QStringLiteral("field"), OSTValidationSettings::fromProperties(QStringLiteral("field"), properties));
    model->setItem(&input);
    input.setModel(model);
    return model;
}

// The same with only the "isOptional" string of the input's properties.
inline std::shared_ptr<OSTValidationItemModel> bindModel(OSTValidationItem &input, const char *optional)
{
    return bindModel(input, QVariantMap{{QStringLiteral("isOptional"), QString::fromUtf8(optional)}});
}

// A text input that judges itself on every edit (valid when not empty) and then reports its
// value, as the text field does. A restored value is shown without being judged.
class FakeTextInput : public QLineEdit, public OSTValidationItem {
public:
    explicit FakeTextInput(QWidget *parent = nullptr)
        : QLineEdit(parent)
    {
        connect(this, &QLineEdit::textEdited, this, [this] { judge(); });
    }

    // What the user would type, replacing the text.
    void type(const QString &text)
    {
        setText(text);
        emit textEdited(text);
    }

    QVariant value() const override { return text().isEmpty() ? QVariant() : QVariant(text()); }
    void setValue(const QVariant &value) override
    {
        if (value.metaType() != QMetaType::fromType<QString>())
            return;
        setText(value.toString());
        showsErrorMessage = true;
    }
    bool shouldShowErrorMessage() const override { return showsErrorMessage; }
    void validityChanged() override { ++validityChangedCount; }

    bool showsErrorMessage = false;
    int validityChangedCount = 0;

private:
    void judge()
    {
        if (const auto item = model()) {
            item->setValid(!text().isEmpty());
            item->valueChanged();
        }
    }
};

// An input that is valid as soon as it has a model, as a picker is.
class FakeAlwaysValidInput : public QWidget, public OSTValidationItem {
public:
    using QWidget::QWidget;

    QVariant value() const override { return {}; }
    void setValue(const QVariant &) override {}
    bool shouldShowErrorMessage() const override { return true; }

protected:
    void modelDidChange() override
    {
        if (const auto item = model())
            item->setValid(true);
    }
};

// A screen view that shows its group's state-sensitive message on every validity change, as the
// screen controller does.
class FakeScreenView : public QWidget, public OSTValidationGroup {
public:
    using QWidget::QWidget;

    void validityChanged() override
    {
        ++validityChangedCount;
        const auto group = model();
        shownMessage = group ? group->stateSensitiveErrorMessage() : std::nullopt;
    }

    int validityChangedCount = 0;
    std::optional<QString> shownMessage;
};

inline QVariantMap mapFromJson(const char *json)
{
    return QJsonDocument::fromJson(QByteArray(json)).toVariant().toMap();
}

} // namespace ostrel::test

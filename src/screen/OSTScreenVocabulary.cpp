#include "screen/OSTScreenVocabulary.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;

namespace ostrel {

const QString OSTScreenVocabulary::backgroundKey = u"background"_s;
const QString OSTScreenVocabulary::errorMessageKey = u"errorMessage"_s;
const QString OSTScreenVocabulary::animationsKey = u"animations"_s;
const QString OSTScreenVocabulary::statusBarStyleKey = u"statusBarStyle"_s;
const QString OSTScreenVocabulary::groupMembersKey = u"elements"_s;
const QString OSTScreenVocabulary::alphaKey = u"alpha"_s;
const QString OSTScreenVocabulary::alignmentKey = u"alignment"_s;
const QString OSTScreenVocabulary::buttonTypeKey = u"buttonType"_s;
const QString OSTScreenVocabulary::contentInsetsKey = u"contentInsets"_s;
const QString OSTScreenVocabulary::inputOrderKey = u"inputOrder"_s;
const QString OSTScreenVocabulary::onClickKey = u"onClick"_s;
const QString OSTScreenVocabulary::pickerKey = u"picker"_s;
const QString OSTScreenVocabulary::secureTextEntryKey = u"secureTextEntry"_s;
const QString OSTScreenVocabulary::textKey = u"text"_s;
const QString OSTScreenVocabulary::textTypeKey = u"textType"_s;
const QString OSTScreenVocabulary::toolbarKey = u"toolbar"_s;

namespace {

// The schema definition ("$defs") each category's elements follow.
QString schemaDefinitionOf(OSTElementFamily family)
{
    switch (family) {
    case OSTElementFamily::Shape:
        return u"shape"_s;
    case OSTElementFamily::Image:
        return u"imageElement"_s;
    case OSTElementFamily::Label:
        return u"label"_s;
    case OSTElementFamily::Input:
        return u"input"_s;
    case OSTElementFamily::Button:
        return u"button"_s;
    case OSTElementFamily::Group:
        return u"group"_s;
    case OSTElementFamily::SelectionGroup:
        break;
    }
    return u"selectionGroup"_s;
}

QJsonObject objectOf(const QString &description, const QJsonObject &elements)
{
    return QJsonObject{{u"type"_s, u"object"_s}, {u"description"_s, description},
                       {u"additionalProperties"_s, elements}};
}

// animations.error.targets.errorMessage, and nothing else under those names.
QJsonObject errorAlternativeSchema()
{
    const auto closedObject = [](const QJsonObject &properties) {
        return QJsonObject{{u"type"_s, u"object"_s}, {u"properties"_s, properties},
                           {u"unevaluatedProperties"_s, false}};
    };
    const QJsonObject errorLook{{u"$ref"_s, u"#/$defs/label"_s},
                                {u"description"_s, u"Merged over the errorMessage label while a message shows"_s}};
    QJsonObject error = closedObject({{u"targets"_s, closedObject({{OSTScreenVocabulary::errorMessageKey, errorLook}})}});
    error.insert(u"description"_s, u"The error message's look while it shows"_s);
    QJsonObject animations = closedObject({{u"error"_s, error}});
    animations.insert(u"description"_s, u"Alternative looks"_s);
    return animations;
}

template <typename Entry>
std::optional<Entry> named(const QList<Entry> &entries, const QString &name)
{
    for (const Entry &each : entries) {
        if (each.name == name)
            return each;
    }
    return std::nullopt;
}

QJsonValue typesSchema(OSTValueTypes types)
{
    static const std::pair<OSTValueType, QString> names[] = {
        {OSTValueType::String, u"string"_s}, {OSTValueType::Number, u"number"_s}, {OSTValueType::Boolean, u"boolean"_s},
        {OSTValueType::Array, u"array"_s},   {OSTValueType::Object, u"object"_s},
    };
    QJsonArray listed;
    for (const auto &[type, name] : names) {
        if (types.testFlag(type))
            listed.append(name);
    }
    return listed.size() == 1 ? listed.first() : QJsonValue(listed);
}

QJsonObject reference(const QString &definition)
{
    return QJsonObject{{u"$ref"_s, u"#/$defs/"_s + definition}};
}

QJsonObject keysSchema(const QList<OSTPropertyKey> &keys);

QJsonObject keySchema(const OSTPropertyKey &key)
{
    QJsonObject schema = key.definition.isEmpty() ? QJsonObject() : reference(key.definition);
    if (key.types)
        schema.insert(u"type"_s, typesSchema(key.types));
    if (!key.description.isEmpty())
        schema.insert(u"description"_s, key.description);
    if (!key.choices.isEmpty())
        schema.insert(u"enum"_s, QJsonArray::fromStringList(key.choices));
    if (key.itemTypes)
        schema.insert(u"items"_s, QJsonObject{{u"type"_s, typesSchema(key.itemTypes)}});
    if (!key.keys.isEmpty()) {
        schema.insert(u"properties"_s, keysSchema(key.keys));
        schema.insert(u"unevaluatedProperties"_s, false);
    }
    if (key.otherKeyTypes)
        schema.insert(u"additionalProperties"_s, QJsonObject{{u"type"_s, typesSchema(key.otherKeyTypes)}});
    return schema;
}

QJsonObject keysSchema(const QList<OSTPropertyKey> &keys)
{
    QJsonObject properties;
    for (const OSTPropertyKey &key : keys)
        properties.insert(key.name, keySchema(key));
    return properties;
}

QJsonObject keySetSchema(const OSTKeySet &set)
{
    QJsonObject schema{{u"description"_s, set.description}};
    if (set.isClosedObject) {
        schema.insert(u"type"_s, u"object"_s);
        schema.insert(u"unevaluatedProperties"_s, false);
    }
    QJsonArray includes;
    for (const QString &included : set.includes)
        includes.append(reference(included));
    if (!includes.isEmpty())
        schema.insert(u"allOf"_s, includes);
    if (!set.keys.isEmpty())
        schema.insert(u"properties"_s, keysSchema(set.keys));
    return schema;
}

} // namespace

const QList<OSTKeySet> &OSTScreenVocabulary::keySets()
{
    using T = OSTValueType;
    // The descriptions are the schema's; the keys are those the screen document's descriptions read.
    static const QList<OSTKeySet> table = {
        {u"frame"_s, u"Where an element lies. Values are formulas: numbers, percentages of the parent's size, {element.attribute} references, \"statusBar\" and arithmetic."_s, false, {}, {
            {.name = u"x"_s, .types = T::String, .description = u"Left edge relative to the parent; default \"0\""_s},
            {.name = u"y"_s, .types = T::String, .description = u"Top edge relative to the parent; default \"0\""_s},
            {.name = u"width"_s, .types = T::String, .description = u"Width; default \"100%\""_s},
            {.name = u"height"_s, .types = T::String, .description = u"Height; default \"100%\""_s},
            {.name = u"anchored"_s, .types = T::String,
             .description = u"Whether the element stays put while the page scrolls; default true (only a string that reads as false makes it scroll)"_s},
            {.name = u"zLayer"_s, .types = T::String | T::Number,
             .description = u"Stacking order, an unsigned number; defaults by category (shapes 200, images 300, groups 400, labels 500, inputs 600, buttons 700)"_s}}},
        {u"box"_s, u"The painted box every element shares."_s, false, {}, {
            {.name = alphaKey, .types = T::String, .description = u"Opacity from \"0\" to \"1\"; default \"1\""_s},
            {.name = u"backgroundColor"_s, .types = T::String,
             .description = u"Fill colour, used without a gradient (hexadecimal colour, optional \"#\", alpha last)"_s},
            {.name = u"backgroundGradient"_s, .types = T::Object, .description = u"A gradient fill"_s, .keys = {
                {.name = u"baseColor"_s, .types = T::String,
                 .description = u"Colour under the gradient (hexadecimal colour, optional \"#\", alpha last)"_s},
                {.name = u"colors"_s, .types = T::Array,
                 .description = u"Gradient stops, colours"_s, .itemTypes = T::String},
                {.name = u"radius"_s, .types = T::String | T::Number,
                 .description = u"Radial end radius; a radial gradient when given"_s},
                {.name = u"style"_s, .types = T::String,
                 .description = u"\"horizontal\" for left to right, else top to bottom"_s}}},
            {.name = u"borderSize"_s, .types = T::String | T::Number,
             .description = u"Border width in points; drawn with borderColor"_s},
            {.name = u"borderColor"_s, .types = T::String,
             .description = u"Border colour (hexadecimal colour, optional \"#\", alpha last)"_s},
            {.name = u"cornerRadius"_s, .types = T::String | T::Number,
             .description = u"Corner radius in points, or \"circle\" for half the height"_s},
            {.name = u"objectShadow"_s, .types = T::Array,
             .description = u"Drop shadow of the element's outline: [colour, blur radius, horizontal offset, vertical offset]"_s, .itemTypes = T::String | T::Number}}},
        {u"text"_s, u"Text attributes."_s, false, {}, {
            {.name = u"font"_s, .types = T::String, .description = u"Font family and weight name"_s},
            {.name = u"size"_s, .types = T::String | T::Number, .description = u"Font size in points"_s},
            {.name = u"textColor"_s, .types = T::String,
             .description = u"Text colour; default black (hexadecimal colour, optional \"#\", alpha last)"_s},
            {.name = u"shadow"_s, .types = T::Array,
             .description = u"Text shadow: [colour, blur radius, horizontal offset, vertical offset]"_s, .itemTypes = T::String | T::Number},
            {.name = u"style"_s, .types = T::String, .description = u"\"underlined\" underlines the text"_s},
            {.name = u"lineSpacing"_s, .types = T::String | T::Number, .description = u"Extra points between lines"_s},
            {.name = alignmentKey, .types = T::String,
             .description = u"Text alignment; default centre"_s, .choices = {u"left"_s, u"center"_s, u"right"_s, u"justified"_s, u"natural"_s}}}},
        {u"image"_s, u"A remote or bundled image."_s, false, {}, {
            {.name = u"image"_s, .types = T::String,
             .description = u"Address or file name of the image, or \"{name}\" for the address a user property holds"_s},
            {.name = u"tempImage"_s, .types = T::String,
             .description = u"Address used while \"image\" is empty or names a user property"_s},
            {.name = u"backupImage"_s, .types = T::String, .description = u"Address tried last"_s},
            {.name = u"required"_s, .types = T::String,
             .description = u"\"true\" when the screen waits for the image"_s},
            {.name = u"insets"_s, .types = T::Array,
             .description = u"Cap insets [top, left, bottom, right] that stretch only the middle"_s, .itemTypes = T::String | T::Number},
            {.name = u"contentMode"_s, .types = T::String,
             .description = u"How the image fills its box; default aspect fill"_s},
            {.name = u"accessibilityLabel"_s, .types = T::String,
             .description = u"Description for assistive technology"_s}}},
        {u"validation"_s, u"Keys of inputs that take part in validation."_s, false, {}, {
            {.name = u"isOptional"_s, .types = T::String, .description = u"\"true\" when the input may stay empty"_s},
            {.name = u"isUnique"_s, .types = T::String,
             .description = u"\"true\" when the host checks the value is not taken"_s},
            {.name = u"userPropertyName"_s, .types = T::String,
             .description = u"The user property the value is saved under"_s},
            {.name = u"errorMessage"_s, .types = T::String,
             .description = u"Message shown while the input is invalid"_s}}},
        {u"action"_s, u"What a press does."_s, true, {}, {
            {.name = u"func"_s, .types = T::String,
             .description = u"The action"_s, .choices = {u"next"_s, u"previous"_s, u"close"_s, u"startFlow"_s, u"loginFacebook"_s, u"openUrl"_s}},
            {.name = u"params"_s, .types = T::Object, .description = u"Parameters of the action"_s, .keys = {
                {.name = u"flowName"_s, .types = T::String, .description = u"startFlow: the flow to start"_s},
                {.name = u"url"_s, .types = T::String, .description = u"openUrl: the address"_s},
                {.name = u"shouldCloseSelf"_s, .types = T::String | T::Number | T::Boolean,
                 .description = u"openUrl: close the experience after opening"_s},
                {.name = u"successAction"_s,
                 .description = u"loginFacebook: what runs after a successful log-in"_s, .definition = u"action"_s}}}}},
        {u"shape"_s, u"A painted box."_s, true, {u"frame"_s, u"box"_s}, {}},
        {u"imageElement"_s, u"An image in a box."_s, true, {u"frame"_s, u"box"_s, u"image"_s}, {}},
        {u"label"_s, u"Styled text in a box."_s, true, {u"frame"_s, u"box"_s, u"text"_s}, {
            {.name = textKey, .types = T::String, .description = u"The text"_s},
            {.name = u"minimumScaleFactor"_s, .types = T::String | T::Number,
             .description = u"How far the font may shrink to fit, 0 to 1"_s}}},
        {u"group"_s, u"A box whose members lie inside it and move with it."_s, true, {u"frame"_s, u"box"_s}, {
            {.name = u"elements"_s, .types = T::Array,
             .description = u"Keys of the member elements"_s, .itemTypes = T::String}}},
        {u"buttonState"_s, u"The look of a button in one state."_s, true, {u"box"_s, u"text"_s, u"image"_s}, {
            {.name = textKey, .types = T::String, .description = u"The title"_s}}},
        {u"button"_s, u"A button, a switch (\"buttonType\": \"toggleSwitch\") or a picture chooser (\"imageUpload\")."_s, true, {u"frame"_s, u"box"_s, u"validation"_s}, {
            {.name = u"states"_s, .types = T::Object,
             .description = u"Looks per state; \"normal\" is required for buttons"_s, .keys = {
                {.name = u"normal"_s, .definition = u"buttonState"_s},
                {.name = u"pressed"_s, .definition = u"buttonState"_s},
                {.name = u"disabled"_s, .definition = u"buttonState"_s}}},
            {.name = onClickKey, .definition = u"action"_s},
            {.name = buttonTypeKey, .types = T::String,
             .description = u"A toggle button, an on/off switch or a picture chooser; a plain button without"_s, .choices = {u"toggle"_s, u"toggleSwitch"_s, u"imageUpload"_s}},
            {.name = u"defaultState"_s, .types = T::String, .description = u"Switches: \"pressed\" starts it on"_s},
            {.name = u"onTintColor"_s, .types = T::String,
             .description = u"Switches: track colour when on (hexadecimal colour, optional \"#\", alpha last)"_s},
            {.name = u"tintColor"_s, .types = T::String,
             .description = u"Switches: outline colour (hexadecimal colour, optional \"#\", alpha last)"_s},
            {.name = u"thumbTintColor"_s, .types = T::String,
             .description = u"Switches: thumb colour (hexadecimal colour, optional \"#\", alpha last)"_s},
            {.name = u"accessibilityLabel"_s, .types = T::String,
             .description = u"Name read by assistive technology"_s},
            {.name = u"imageSelector"_s, .types = T::Object,
             .description = u"Picture choosers: the titles of the menu a press opens; without it a press does nothing"_s, .keys = {
                {.name = u"cameraText"_s, .types = T::String,
                 .description = u"The camera entry, shown only where a camera source exists (none on a desktop)"_s},
                {.name = u"photosText"_s, .types = T::String,
                 .description = u"The entry that opens the file chooser; default \"Photos\""_s},
                {.name = u"cancelText"_s, .types = T::String,
                 .description = u"The entry that cancels; default \"Cancel\""_s},
                {.name = u"alternateCancel"_s, .description = u"Accepted and without effect"_s}}}}},
        {u"toolbar"_s, u"The bar with cancel and done above a wheel or keyboard"_s, true, {}, {
            {.name = u"acceptText"_s, .types = T::String,
             .description = u"Title of the done button; default \"Done\""_s},
            {.name = u"cancelText"_s, .types = T::String,
             .description = u"Title of the cancel button; default \"Cancel\""_s},
            {.name = u"barStyle"_s, .types = T::String, .description = u"The bar's look"_s}}},
        {u"labelText"_s, u"Text shown inside an input, with its own text attributes"_s, true, {u"frame"_s, u"box"_s, u"text"_s}, {
            {.name = textKey, .types = T::String, .description = u"The text"_s},
            {.name = u"minimumScaleFactor"_s, .types = T::String | T::Number,
             .description = u"How far the font may shrink to fit"_s},
            {.name = contentInsetsKey, .types = T::Array,
             .description = u"[top, left, bottom, right] insets of the text"_s, .itemTypes = T::String | T::Number}}},
        {u"input"_s, u"A text field, or a picker when \"picker\" is present."_s, true, {u"frame"_s, u"box"_s, u"image"_s, u"validation"_s}, {
            {.name = textKey, .description = u"The initial text and its look"_s, .definition = u"labelText"_s},
            {.name = u"placeholder"_s,
             .description = u"Text fields: shown while empty"_s, .definition = u"labelText"_s},
            {.name = u"states"_s, .types = T::Object, .description = u"Text fields: the invalid look"_s, .keys = {
                {.name = u"invalid"_s, .types = T::Object,
                 .description = u"Keys laid over the field's own while it shows as invalid"_s}}},
            {.name = textTypeKey, .types = T::String,
             .description = u"Text fields: what kind of text; plain without"_s, .choices = {u"password"_s, u"phoneNumber"_s, u"phoneNumberValidated"_s, u"phoneNumberPin"_s}},
            {.name = u"maxLength"_s, .types = T::String | T::Number,
             .description = u"Text fields: most characters; 0 or -1 for no limit"_s},
            {.name = u"minLength"_s, .types = T::String | T::Number,
             .description = u"Text fields: fewest characters"_s},
            {.name = u"validationPattern"_s, .types = T::String,
             .description = u"Text fields: ICU regular expression a valid text matches exactly once"_s},
            {.name = u"keyboardType"_s, .types = T::String,
             .description = u"Text fields: the on-screen keyboard's kind"_s},
            {.name = u"autocapitalizationType"_s, .types = T::String,
             .description = u"Text fields: automatic capitals"_s},
            {.name = u"autocorrectionType"_s, .types = T::String,
             .description = u"Text fields: automatic correction"_s},
            {.name = u"spellCheckingType"_s, .types = T::String,
             .description = u"Text fields: spell checking; accepted and ignored on a desktop"_s},
            {.name = u"keyboardAppearance"_s, .types = T::String,
             .description = u"Text fields: the on-screen keyboard's look; accepted and ignored on a desktop"_s},
            {.name = u"returnKeyType"_s, .types = T::String,
             .description = u"Text fields: the return key's title; accepted and ignored on a desktop"_s},
            {.name = secureTextEntryKey, .types = T::String,
             .description = u"Text fields: \"true\" hides the text"_s},
            {.name = u"clearButtonMode"_s, .types = T::String,
             .description = u"Text fields: when a clear button shows"_s},
            {.name = u"clearsOnBeginEditing"_s, .types = T::String,
             .description = u"Text fields: \"true\" empties the field when it takes the focus"_s},
            {.name = u"enablesReturnKeyAutomatically"_s, .types = T::String,
             .description = u"Text fields: return only with text"_s},
            {.name = u"autoSubmit"_s, .types = T::String,
             .description = u"PIN fields: \"false\" stops the automatic submit"_s},
            {.name = u"contentAlignment"_s, .types = T::String,
             .description = u"Text fields: horizontal alignment of the text"_s},
            {.name = u"verticalAlignment"_s, .types = T::String,
             .description = u"Text fields: vertical alignment of the text"_s},
            {.name = u"horizontalAlignment"_s, .types = T::String,
             .description = u"Text fields: horizontal alignment of the text when no alignment word is given; centre otherwise"_s, .choices = {u"left"_s, u"right"_s, u"fill"_s}},
            {.name = u"adjustsFontSizeToFitWidth"_s, .types = T::String,
             .description = u"Text fields: \"true\" shrinks the font while the text is wider than the field"_s},
            {.name = u"minimumFontSize"_s, .types = T::String | T::Number,
             .description = u"Text fields: the smallest size the font shrinks to"_s},
            {.name = u"textAlignment"_s, .types = T::String, .description = u"Text fields: alignment of the text"_s},
            {.name = contentInsetsKey, .types = T::Array,
             .description = u"Pickers: [top, left, bottom, right] insets of the label"_s, .itemTypes = T::String | T::Number},
            {.name = toolbarKey, .definition = u"toolbar"_s},
            {.name = inputOrderKey, .types = T::String | T::Number,
             .description = u"Position in the screen's return-key chain"_s},
            {.name = pickerKey, .types = T::Object, .description = u"Makes the input a picker"_s, .keys = {
                {.name = u"pickerType"_s, .types = T::String,
                 .description = u"A country calling code, a date, or (without) the custom list"_s, .choices = {u"countryCode"_s, u"date"_s}},
                {.name = u"pickerData"_s, .types = T::Array,
                 .description = u"The entries of a custom list"_s, .itemTypes = T::String},
                {.name = u"pickerMode"_s, .types = T::String, .description = u"Dates: the wheel's mode"_s},
                {.name = u"startDate"_s, .types = T::String, .description = u"Dates: initial date, MM/dd/yyyy"_s},
                {.name = u"minDate"_s, .types = T::String, .description = u"Dates: earliest date, MM/dd/yyyy"_s},
                {.name = u"maxDate"_s, .types = T::String, .description = u"Dates: latest date, MM/dd/yyyy"_s}}}}},
        {u"selectionGroup"_s, u"Buttons of the screen acting as one input"_s, true, {u"validation"_s}, {
            {.name = u"elements"_s, .types = T::Object,
             .description = u"Button element key to the value the button stands for"_s, .otherKeyTypes = T::String | T::Number | T::Boolean | T::Object},
            {.name = u"maximumSelection"_s, .types = T::String | T::Number,
             .description = u"Most selected buttons; 1 for a single choice, 0 for no limit"_s},
            {.name = u"minimumSelection"_s, .types = T::String | T::Number,
             .description = u"Fewest selected buttons"_s},
            {.name = onClickKey, .definition = u"action"_s}}}
    };
    return table;
}

std::optional<OSTKeySet> OSTScreenVocabulary::keySet(const QString &name)
{
    return named(keySets(), name);
}

QList<OSTPropertyKey> OSTScreenVocabulary::elementKeys(OSTElementFamily family)
{
    const std::optional<OSTKeySet> set = keySet(schemaDefinitionOf(family));
    QList<OSTPropertyKey> keys;
    for (const QString &included : set->includes)
        keys.append(keySet(included)->keys);
    keys.append(set->keys);
    return keys;
}

QJsonObject OSTScreenVocabulary::schema()
{
    QJsonObject definitions;
    for (const OSTKeySet &set : keySets())
        definitions.insert(set.name, keySetSchema(set));
    return QJsonObject{
        {u"$schema"_s, u"https://json-schema.org/draft/2020-12/schema"_s},
        {u"$id"_s, u"https://ostrel.dev/schemas/screen.schema.json"_s},
        {u"title"_s, u"Ostrel screen"_s},
        {u"description"_s, u"One screen of an experience: its elements by category, each under its element key. The top-level "
                           u"object also styles the screen's backdrop. Visual values are strings; a number or boolean in their "
                           u"place is ignored and the default applies."_s},
        {u"type"_s, u"object"_s},
        {u"allOf"_s, QJsonArray{reference(u"box"_s)}},
        {u"properties"_s, schemaTopLevelProperties()},
        {u"unevaluatedProperties"_s, false},
        {u"$defs"_s, definitions},
    };
}

const QList<OSTElementCategory> &OSTScreenVocabulary::categories()
{
    static const QList<OSTElementCategory> table = {
        {u"shapes"_s, OSTElementFamily::Shape, u"Painted boxes; the key \"background\" always lies lowest"_s, 200},
        {u"images"_s, OSTElementFamily::Image, u"Images"_s, 300},
        {u"labels"_s, OSTElementFamily::Label, u"Texts; the key \"errorMessage\" shows validation and service errors"_s, 500},
        {u"inputs"_s, OSTElementFamily::Input, u"Text fields and pickers"_s, 600},
        {u"buttons"_s, OSTElementFamily::Button, u"Buttons, switches and picture choosers"_s, 700},
        {u"selectionGroups"_s, OSTElementFamily::SelectionGroup, u"Groups of buttons that act as one input"_s, std::nullopt},
        {u"groups"_s, OSTElementFamily::Group, u"Groups of elements"_s, 400},
    };
    return table;
}

std::optional<OSTElementCategory> OSTScreenVocabulary::category(const QString &name)
{
    return named(categories(), name);
}

const QStringList &OSTScreenVocabulary::laidOutCategoryNames()
{
    static const QStringList names = [] {
        QStringList laidOut;
        for (const OSTElementCategory &each : categories()) {
            if (each.defaultZLayer)
                laidOut.append(each.name);
        }
        return laidOut;
    }();
    return names;
}

const QStringList &OSTScreenVocabulary::layoutOrder()
{
    // Key order of the category names, groups last: the layout engine's historical order.
    static const QStringList order = {u"buttons"_s, u"images"_s, u"inputs"_s, u"labels"_s, u"shapes"_s, u"groups"_s};
    return order;
}

const QStringList &OSTScreenVocabulary::buildOrder()
{
    static const QStringList order = {u"shapes"_s, u"images"_s, u"groups"_s, u"labels"_s, u"buttons"_s, u"inputs"_s};
    return order;
}

const QStringList &OSTScreenVocabulary::frameKeys()
{
    static const QStringList keys = {u"x"_s, u"y"_s, u"width"_s, u"height"_s};
    return keys;
}

QJsonObject OSTScreenVocabulary::schemaTopLevelProperties()
{
    QJsonObject properties;
    for (const OSTElementCategory &each : categories()) {
        const QJsonObject elements{{u"$ref"_s, u"#/$defs/"_s + schemaDefinitionOf(each.family)}};
        properties.insert(each.name, objectOf(each.description, elements));
    }
    properties.insert(animationsKey, errorAlternativeSchema());
    properties.insert(statusBarStyleKey, QJsonObject{
        {u"type"_s, u"string"_s},
        {u"description"_s, u"\"disabled\" hides the status bar, \"white\" shows it light; otherwise the default look"_s}});
    return properties;
}

} // namespace ostrel

#pragma once

#include <ostrel/OSTExport.h>

// The words of screen JSON that name a text, keyboard or control setting, turned into numbers.
// Every enumeration keeps the numeric values of the platform the screen descriptions were first
// written for: those numbers are the contract between the screen JSON, the element views and a
// host that reads them, so they never change.
//
// Each XFromString function reads its word exactly (case-sensitive, no trimming); no value, an
// empty string or any word it does not know gives the enumeration's default. The tables are
// built once, on first use, and are safe to read from any thread.

#include <QString>

#include <optional>

namespace ostrel {

// "alignment" of labels and buttons, "textAlignment" or "alignment" of text fields.
enum NSTextAlignment : int {
    NSTextAlignmentLeft = 0,
    NSTextAlignmentCenter = 1,
    NSTextAlignmentRight = 2,
    NSTextAlignmentJustified = 3,
    NSTextAlignmentNatural = 4,
};
// "left", "center", "right", "justified", "natural"; default NSTextAlignmentCenter.
OSTREL_EXPORT NSTextAlignment NSTextAlignmentFromString(const std::optional<QString> &string);

// "contentMode" of images. Value 3 (redraw) has no word on purpose.
enum UIViewContentMode : int {
    UIViewContentModeScaleToFill = 0,
    UIViewContentModeScaleAspectFit = 1,
    UIViewContentModeScaleAspectFill = 2,
    UIViewContentModeRedraw = 3,
    UIViewContentModeCenter = 4,
    UIViewContentModeTop = 5,
    UIViewContentModeBottom = 6,
    UIViewContentModeLeft = 7,
    UIViewContentModeRight = 8,
    UIViewContentModeTopLeft = 9,
    UIViewContentModeTopRight = 10,
    UIViewContentModeBottomLeft = 11,
    UIViewContentModeBottomRight = 12,
};
// "scaleFill", "aspectFit", "aspectFill", "center", "top", "bottom", "left", "right", "topLeft",
// "topRight", "bottomLeft", "bottomRight"; default UIViewContentModeScaleAspectFill.
OSTREL_EXPORT UIViewContentMode UIViewContentModeFromString(const std::optional<QString> &string);

// "horizontalAlignment" of text fields.
enum UIControlContentHorizontalAlignment : int {
    UIControlContentHorizontalAlignmentCenter = 0,
    UIControlContentHorizontalAlignmentLeft = 1,
    UIControlContentHorizontalAlignmentRight = 2,
    UIControlContentHorizontalAlignmentFill = 3,
};
// "left", "right", "fill"; default (and the only way to get) the centre.
OSTREL_EXPORT UIControlContentHorizontalAlignment
UIControlContentHorizontalAlignmentFromString(const std::optional<QString> &string);

// "verticalAlignment" of text fields.
enum UIControlContentVerticalAlignment : int {
    UIControlContentVerticalAlignmentCenter = 0,
    UIControlContentVerticalAlignmentTop = 1,
    UIControlContentVerticalAlignmentBottom = 2,
    UIControlContentVerticalAlignmentFill = 3,
};
// "top", "bottom", "fill"; default the centre.
OSTREL_EXPORT UIControlContentVerticalAlignment
UIControlContentVerticalAlignmentFromString(const std::optional<QString> &string);

// "pickerMode" of date pickers.
enum UIDatePickerMode : int {
    UIDatePickerModeTime = 0,
    UIDatePickerModeDate = 1,
    UIDatePickerModeDateAndTime = 2,
    UIDatePickerModeCountDownTimer = 3,
};
// "time", "dateAndTime", "countDownTimer"; default (and the only way to get) the date mode.
OSTREL_EXPORT UIDatePickerMode UIDatePickerModeFromString(const std::optional<QString> &string);

// "keyboardAppearance" of text fields.
enum UIKeyboardAppearance : int {
    UIKeyboardAppearanceDefault = 0,
    UIKeyboardAppearanceDark = 1,
    UIKeyboardAppearanceLight = 2,
};
// "dark", "light"; default UIKeyboardAppearanceDefault.
OSTREL_EXPORT UIKeyboardAppearance UIKeyboardAppearanceFromString(const std::optional<QString> &string);

// "keyboardType" of text fields.
enum UIKeyboardType : int {
    UIKeyboardTypeDefault = 0,
    UIKeyboardTypeASCIICapable = 1,
    UIKeyboardTypeNumbersAndPunctuation = 2,
    UIKeyboardTypeURL = 3,
    UIKeyboardTypeNumberPad = 4,
    UIKeyboardTypePhonePad = 5,
    UIKeyboardTypeNamePhonePad = 6,
    UIKeyboardTypeEmailAddress = 7,
    UIKeyboardTypeDecimalPad = 8,
    UIKeyboardTypeTwitter = 9,
    UIKeyboardTypeWebSearch = 10,
};
// "ASCIICapable", "numbersAndPunctuation", "URL", "numberPad", "phonePad", "namePhonePad",
// "emailAddress", "decimalPad", "twitter", "webSearch"; default UIKeyboardTypeDefault.
OSTREL_EXPORT UIKeyboardType UIKeyboardTypeFromString(const std::optional<QString> &string);

// "returnKeyType" of text fields.
enum UIReturnKeyType : int {
    UIReturnKeyDefault = 0,
    UIReturnKeyGo = 1,
    UIReturnKeyGoogle = 2,
    UIReturnKeyJoin = 3,
    UIReturnKeyNext = 4,
    UIReturnKeyRoute = 5,
    UIReturnKeySearch = 6,
    UIReturnKeySend = 7,
    UIReturnKeyYahoo = 8,
    UIReturnKeyDone = 9,
    UIReturnKeyEmergencyCall = 10,
};
// "go", "google", "join", "next", "route", "search", "send", "yahoo", "done", "emergencyCall";
// default UIReturnKeyDefault.
OSTREL_EXPORT UIReturnKeyType UIReturnKeyTypeFromString(const std::optional<QString> &string);

// "autocapitalizationType" of text fields.
enum UITextAutocapitalizationType : int {
    UITextAutocapitalizationTypeNone = 0,
    UITextAutocapitalizationTypeWords = 1,
    UITextAutocapitalizationTypeSentences = 2,
    UITextAutocapitalizationTypeAllCharacters = 3,
};
// "words", "sentences", "allCharacters"; default UITextAutocapitalizationTypeNone.
OSTREL_EXPORT UITextAutocapitalizationType
UITextAutocapitalizationTypeFromString(const std::optional<QString> &string);

// "autocorrectionType" of text fields.
enum UITextAutocorrectionType : int {
    UITextAutocorrectionTypeDefault = 0,
    UITextAutocorrectionTypeNo = 1,
    UITextAutocorrectionTypeYes = 2,
};
// "no", "yes"; default UITextAutocorrectionTypeDefault.
OSTREL_EXPORT UITextAutocorrectionType UITextAutocorrectionTypeFromString(const std::optional<QString> &string);

// "spellCheckingType" of text fields.
enum UITextSpellCheckingType : int {
    UITextSpellCheckingTypeDefault = 0,
    UITextSpellCheckingTypeNo = 1,
    UITextSpellCheckingTypeYes = 2,
};
// "no", "yes"; default UITextSpellCheckingTypeDefault.
OSTREL_EXPORT UITextSpellCheckingType UITextSpellCheckingTypeFromString(const std::optional<QString> &string);

// "clearButtonMode" of text fields: when the field shows its clear button.
enum UITextFieldViewMode : int {
    UITextFieldViewModeNever = 0,
    UITextFieldViewModeWhileEditing = 1,
    UITextFieldViewModeUnlessEditing = 2,
    UITextFieldViewModeAlways = 3,
};
// "whileEditing", "unlessEditing", "always"; default UITextFieldViewModeNever.
OSTREL_EXPORT UITextFieldViewMode UITextFieldViewModeFromString(const std::optional<QString> &string);

// "pickerType" of pickers: what the picker's wheel offers.
enum OSTPickerType : int {
    OSTPickerTypeCustomData = 0, // the entries of "pickerData"
    OSTPickerTypeCountryCode = 1,
    OSTPickerTypeDate = 2,
};
// "countryCode", "date"; default OSTPickerTypeCustomData.
OSTREL_EXPORT OSTPickerType OSTPickerTypeFromString(const std::optional<QString> &string);

// "textType" of text fields: what kind of text the field takes.
enum OSTTextFieldType : int {
    OSTTextFieldTypePlain = 0,
    OSTTextFieldTypePassword = 1,
    OSTTextFieldTypePhoneNumber = 2,
    OSTTextFieldTypePhoneNumberValidated = 3,
    OSTTextFieldTypePhoneNumberPin = 4,
};
// "password", "phoneNumber", "phoneNumberValidated", "phoneNumberPin"; default
// OSTTextFieldTypePlain.
OSTREL_EXPORT OSTTextFieldType OSTTextFieldTypeFromString(const std::optional<QString> &string);

// "func" of an action (a button's action or a flow's "flowEndAction"): what the experience does.
enum OSTActionType : int {
    OSTActionTypeNone = 0,
    OSTActionTypeNext = 1,
    OSTActionTypePrevious = 2,
    OSTActionTypeClose = 3,
    OSTActionTypeStartFlow = 4,
    OSTActionTypeLoginFacebook = 5,
    OSTActionTypeOpenURL = 6,
};
// "next", "previous", "close", "startFlow", "loginFacebook", "openUrl"; default OSTActionTypeNone.
OSTREL_EXPORT OSTActionType OSTActionTypeFromString(const std::optional<QString> &string);

} // namespace ostrel

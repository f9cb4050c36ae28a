#pragma once

// The screen the screen benchmarks of both toolkits draw: 40 elements — 12 labels, 10 buttons with
// background images, 10 image views and 8 switches on a gradient backdrop, some placed by references
// to others — laid out at 375 x 667 points and painted at device pixel ratio 2.

#include "experience/OSTScreen.h"

#include <QString>
#include <QStringList>

#include <memory>

namespace ostrel::bench {

using namespace Qt::StringLiterals;

inline constexpr qreal devicePixelRatio = 2;
inline constexpr int elementCount = 40;

inline QString frame(int index)
{
    // Five columns of eight rows; every row after the first hangs below the one above it.
    const QString x = u"%1"_s.arg(8 + (index % 5) * 73);
    const QString y = index < 5 ? u"12"_s : u"{e%1.y} + {e%1.height} + 12"_s.arg(index - 5);
    return uR"("x": "%1", "y": "%2", "width": "65", "height": "70")"_s.arg(x, y);
}

inline QString screenJson()
{
    QStringList labels, buttons, images;
    for (int index = 0; index < elementCount; ++index) {
        const QString key = u"e%1"_s.arg(index);
        const QString picture = u"https://images.example.test/picture%1.png"_s.arg(index % 4);
        switch (index % 4) {
        case 0:
            labels << uR"("%1": {%2, "text": "Label %3 for {first_name} wraps", "size": "13", "textColor": "#FFFFFF"})"_s
                          .arg(key, frame(index))
                          .arg(index);
            break;
        case 1:
            buttons << uR"("%1": {%2, "cornerRadius": "10", "onClick": {"func": "next"},
                                  "states": {"normal": {"text": "Go", "size": "15", "image": "%3"},
                                             "pressed": {"textColor": "#FF0000"}}})"_s
                           .arg(key, frame(index), picture);
            break;
        case 2:
            images << uR"("%1": {%2, "image": "%3", "cornerRadius": "8", "required": "true"})"_s.arg(key, frame(index),
                                                                                                  picture);
            break;
        default:
            if (index % 8 == 3)
                buttons << uR"("%1": {%2, "buttonType": "toggleSwitch", "defaultState": "pressed"})"_s.arg(key, frame(index));
            else
                labels << uR"("%1": {%2, "text": "Short", "size": "17", "textColor": "#FFCC00",
                                     "shadow": ["#000000", "2", "1", "1"]})"_s.arg(key, frame(index));
        }
    }
    return uR"({"backgroundGradient": {"colors": ["#1E3C72", "#2A5298"]},
                "labels": {%1}, "buttons": {%2}, "images": {%3}})"_s
        .arg(labels.join(u","_s), buttons.join(u","_s), images.join(u","_s));
}

inline std::shared_ptr<const OSTScreen> benchmarkScreen()
{
    return std::make_shared<const OSTScreen>(u"bench"_s, QVariantMap{{u"json_data"_s, screenJson()}},
                                             OSTDocumentOrigin::Local);
}

// The substitution of the benchmark screens: {first_name} is Ada.
inline QString substituteFirstName(const QString &text)
{
    return QString(text).replace(u"{first_name}"_s, u"Ada"_s);
}

} // namespace ostrel::bench

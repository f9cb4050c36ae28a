#include "JsonLocator.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace {
// Deeper nesting than any screen needs; beyond it the scan stops instead of recursing further.
constexpr int maximumDepth = 256;
} // namespace

JsonLocator::JsonLocator(const QByteArray &text) : m_text(text)
{
    skipWhitespace();
    scanValue(QString(), 0);
}

QString JsonLocator::appendToPointer(const QString &pointer, const QString &key)
{
    QString escaped = key;
    escaped.replace(QLatin1Char('~'), QStringLiteral("~0")).replace(QLatin1Char('/'), QStringLiteral("~1"));
    return pointer + QLatin1Char('/') + escaped;
}

void JsonLocator::skipWhitespace()
{
    while (!atEnd() && QByteArrayView(" \t\r\n").contains(m_text.at(m_offset)))
        ++m_offset;
}

void JsonLocator::scanValue(const QString &pointer, int depth)
{
    if (atEnd() || depth > maximumDepth) {
        m_offset = m_text.size();
        return;
    }
    m_valueOffsets.insert(pointer, m_offset);
    switch (m_text.at(m_offset)) {
    case '{':
        scanObject(pointer, depth);
        break;
    case '[':
        scanArray(pointer, depth);
        break;
    case '"':
        scanString();
        break;
    default:
        skipScalar();
    }
}

void JsonLocator::scanObject(const QString &pointer, int depth)
{
    ++m_offset; // '{'
    skipWhitespace();
    while (!atEnd() && m_text.at(m_offset) != '}') {
        if (m_text.at(m_offset) != '"') {
            m_offset = m_text.size();
            return;
        }
        const QString key = scanString();
        skipWhitespace();
        if (atEnd() || m_text.at(m_offset) != ':') {
            m_offset = m_text.size();
            return;
        }
        ++m_offset;
        skipWhitespace();
        scanValue(appendToPointer(pointer, key), depth + 1);
        skipWhitespace();
        if (!atEnd() && m_text.at(m_offset) == ',') {
            ++m_offset;
            skipWhitespace();
        }
    }
    if (!atEnd())
        ++m_offset; // '}'
}

void JsonLocator::scanArray(const QString &pointer, int depth)
{
    ++m_offset; // '['
    skipWhitespace();
    for (int index = 0; !atEnd() && m_text.at(m_offset) != ']'; ++index) {
        scanValue(appendToPointer(pointer, QString::number(index)), depth + 1);
        skipWhitespace();
        if (!atEnd() && m_text.at(m_offset) == ',') {
            ++m_offset;
            skipWhitespace();
        } else if (!atEnd() && m_text.at(m_offset) != ']') {
            m_offset = m_text.size();
        }
    }
    if (!atEnd())
        ++m_offset; // ']'
}

QString JsonLocator::scanString()
{
    const qsizetype start = m_offset;
    ++m_offset; // opening quote
    while (!atEnd() && m_text.at(m_offset) != '"')
        m_offset += m_text.at(m_offset) == '\\' ? 2 : 1;
    m_offset = std::min(m_offset + 1, m_text.size());
    // The JSON parser decodes the escapes exactly as the screen reader does.
    const QByteArray literal = "[" + m_text.mid(start, m_offset - start) + "]";
    return QJsonDocument::fromJson(literal).array().at(0).toString();
}

void JsonLocator::skipScalar()
{
    while (!atEnd() && !QByteArrayView(",]} \t\r\n").contains(m_text.at(m_offset)))
        ++m_offset;
}

JsonLocator::Position JsonLocator::positionOf(const QString &pointer) const
{
    return positionOfOffset(m_valueOffsets.value(pointer, 0));
}

JsonLocator::Position JsonLocator::positionOfOffset(qsizetype offset) const
{
    const QByteArray before = m_text.left(offset);
    const qsizetype lineStart = before.lastIndexOf('\n') + 1;
    return {int(before.count('\n')) + 1, int(QString::fromUtf8(before.mid(lineStart)).size()) + 1};
}

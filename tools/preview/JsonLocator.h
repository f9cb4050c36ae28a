#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

// Where each value of a JSON text starts, by JSON pointer ("/labels/title/x"), as a line and a
// column (both counted from 1, columns in characters). Built by one scan of the text; a text
// that is not valid JSON gives the positions of what came before the error.
class JsonLocator {
public:
    struct Position {
        int line = 0;
        int column = 0;
    };

    explicit JsonLocator(const QByteArray &text);

    // The position of the value at `pointer`; the root's position when the pointer is unknown.
    Position positionOf(const QString &pointer) const;
    // The position of a byte offset (for parse errors).
    Position positionOfOffset(qsizetype offset) const;

    // "/a~1b/c~0d" for the keys "a/b" and "c~d".
    static QString appendToPointer(const QString &pointer, const QString &key);

private:
    void scanValue(const QString &pointer, int depth);
    void scanObject(const QString &pointer, int depth);
    void scanArray(const QString &pointer, int depth);
    QString scanString();
    void skipWhitespace();
    void skipScalar();
    bool atEnd() const { return m_offset >= m_text.size(); }

    const QByteArray m_text;
    qsizetype m_offset = 0;
    QHash<QString, qsizetype> m_valueOffsets;
};

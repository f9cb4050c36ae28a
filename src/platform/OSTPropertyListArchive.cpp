#include "platform/OSTPropertyListArchive.h"

#include <QDataStream>
#include <QDateTime>
#include <QIODevice>
#include <QVariantList>
#include <QVariantMap>

#include <algorithm>

namespace ostrel {

namespace {

constexpr char magic[4] = {'O', 'S', 'T', 'P'};
constexpr quint8 formatVersion = 1;
// Fixed so that archives written by one Qt release read back in a later one.
constexpr QDataStream::Version streamVersion = QDataStream::Qt_6_4;
constexpr qsizetype headerSize = sizeof(magic) + sizeof(formatVersion);

} // namespace

bool OSTPropertyListArchive::isPropertyListValue(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QString:
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
    case QMetaType::QByteArray:
    case QMetaType::QDateTime:
        return true;
    case QMetaType::QVariantList: {
        const QVariantList list = value.toList();
        return std::all_of(list.cbegin(), list.cend(), isPropertyListValue);
    }
    case QMetaType::QVariantMap: {
        const QVariantMap map = value.toMap();
        return std::all_of(map.cbegin(), map.cend(), isPropertyListValue);
    }
    default:
        return false;
    }
}

QByteArray OSTPropertyListArchive::archive(const QVariant &value)
{
    if (!isPropertyListValue(value))
        return {};
    QByteArray bytes(magic, sizeof(magic));
    bytes.append(static_cast<char>(formatVersion));
    QDataStream stream(&bytes, QIODevice::WriteOnly | QIODevice::Append);
    stream.setVersion(streamVersion);
    stream << value;
    return bytes;
}

std::optional<QVariant> OSTPropertyListArchive::unarchive(const QByteArray &bytes)
{
    if (bytes.size() <= headerSize || !bytes.startsWith(QByteArrayView(magic, sizeof(magic)))
        || static_cast<quint8>(bytes.at(sizeof(magic))) != formatVersion)
        return std::nullopt;
    QDataStream stream(bytes.sliced(headerSize));
    stream.setVersion(streamVersion);
    QVariant value;
    stream >> value;
    if (stream.status() != QDataStream::Ok || !stream.atEnd() || !isPropertyListValue(value))
        return std::nullopt;
    return value;
}

} // namespace ostrel

#include "users/OSTFacebookLoginInfo.h"

#include "core/OSTDictionaryHelpers.h"

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

const QString defaultGraphFields =
    u"about,age_range,bio,birthday,currency,devices,education,email,favorite_athletes,favorite_teams,"
    u"first_name,gender,hometown,inspirational_people,install_type,installed,interested_in,is_verified,"
    u"languages,last_name,link,location,locale,meeting_for,middle_name,name,name_format,"
    u"payment_pricepoints,test_group,political,relationship_status,religion,security_settings,"
    u"significant_other,sports,quotes,third_party_id,timezone,updated_time,verified,video_upload_limits,"
    u"viewer_can_send_gift,website,work,cover"_s;

// The string elements of an array; nothing when the key holds no array.
std::optional<QStringList> stringsForKey(const QVariantMap &properties, const QString &key)
{
    const std::optional<QVariantList> array = ost_arrayForKey(properties, key);
    if (!array)
        return std::nullopt;
    QStringList strings;
    for (const QVariant &element : *array) {
        if (element.typeId() == QMetaType::QString)
            strings.append(element.toString());
    }
    return strings;
}

} // namespace

OSTFacebookLoginInfo::OSTFacebookLoginInfo(const std::optional<QVariantMap> &properties)
{
    const QVariantMap given = properties.value_or(QVariantMap());
    const std::optional<QStringList> fields = stringsForKey(given, u"graphFields"_s);
    m_graphFields = fields ? fields->join(u',') : defaultGraphFields;
    m_graphVersion = ost_stringForKey(given, u"graphVersion"_s).value_or(u"v2.5"_s);
    m_permissions = stringsForKey(given, u"permissions"_s).value_or(QStringList{u"public_profile"_s, u"email"_s});
}

} // namespace ostrel

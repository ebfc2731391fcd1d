#include "ConfigBase.h"

#include <variant>

namespace {

void Assign(int &member, const QVariant &value)
{
    member = value.toInt();
}

void Assign(bool &member, const QVariant &value)
{
    member = value.toString() == QLatin1String("true");
}

void Assign(QString &member, const QVariant &value)
{
    member = value.toString();
}

} // namespace

CConfigBase::CConfigBase()
{
    Reset();
}

CConfigBase::~CConfigBase() = default;

void CConfigBase::SetConfigs(QHash<QString, QVariant> configs)
{
    using TMember = std::variant<int CConfigBase::*, bool CConfigBase::*, QString CConfigBase::*>;
    static const QHash<QString, TMember> members{
#define CONFIG_ENTRY(type, Name, key, defaultValue, property, readers) {QStringLiteral(#key), &CConfigBase::m_##Name},
        CONFIG_TABLE(CONFIG_ENTRY)
#undef CONFIG_ENTRY
    };
    for (auto config = configs.cbegin(); config != configs.cend(); ++config) {
        const auto member = members.constFind(config.key().toLower());
        if (member != members.constEnd())
            std::visit([&](auto pointer) { Assign(this->*pointer, config.value()); }, *member);
    }
}

void CConfigBase::Reset()
{
#define CONFIG_RESET(type, Name, key, defaultValue, property, readers) m_##Name = defaultValue;
    CONFIG_TABLE(CONFIG_RESET)
#undef CONFIG_RESET
}

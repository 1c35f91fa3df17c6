#include "schema/PFMKeyFields.h"

#include <QStringView>

namespace quorlin {

namespace {

using Field = PFMKeyFields::Field;

// An open-addressed table of the field names. Its slot comes from the length
// and three characters, which costs a fraction of a full string hash and
// tells the names apart well enough; one comparison then confirms a match.
class FieldTable {
public:
    FieldTable() {
        for (int field = 0; field < int(Field::count); ++field) {
            const QString name = PFMKeyFields::keyName(Field(field));
            std::size_t slot = slotOf(name);
            while (m_slots[slot].field)
                slot = (slot + 1) % slotCount;
            m_slots[slot] = {name, Field(field)};
        }
    }

    std::optional<Field> find(QStringView name) const {
        for (std::size_t slot = slotOf(name); m_slots[slot].field; slot = (slot + 1) % slotCount) {
            if (m_slots[slot].name == name)
                return m_slots[slot].field;
        }
        return std::nullopt;
    }

private:
    static constexpr std::size_t slotCount = 256;

    static std::size_t slotOf(QStringView name) {
        const auto size = std::size_t(name.size());
        if (size < 4)
            return size;
        return (size * 131 + name[size - 1].unicode() * 31 + name[size - 3].unicode() * 7 +
                name[size / 2].unicode()) %
               slotCount;
    }

    struct Slot {
        QString name;
        std::optional<Field> field;
    };
    std::array<Slot, slotCount> m_slots;
};

} // namespace

PFMKeyFields::PFMKeyFields(const plist::Dictionary& dictionary) {
    static const FieldTable table;
    const auto& entries = dictionary.map();
    for (auto entry = entries.cbegin(); entry != entries.cend(); ++entry) {
        if (const auto field = table.find(entry.key()))
            m_values[std::size_t(*field)] = &entry.value();
    }
}

const plist::Value& PFMKeyFields::value(Field field) const {
    static const plist::Value absent;
    const plist::Value* found = m_values[std::size_t(field)];
    return found ? *found : absent;
}

QString PFMKeyFields::keyName(Field field) {
    switch (field) {
    case Field::type:
        return QStringLiteral("pfm_type");
    case Field::name:
        return QStringLiteral("pfm_name");
    case Field::title:
        return QStringLiteral("pfm_title");
    case Field::description:
        return QStringLiteral("pfm_description");
    case Field::format:
        return QStringLiteral("pfm_format");
    case Field::rangeMin:
        return QStringLiteral("pfm_range_min");
    case Field::rangeMax:
        return QStringLiteral("pfm_range_max");
    case Field::rangeList:
        return QStringLiteral("pfm_range_list");
    case Field::suggestions:
        return QStringLiteral("pfm_quorlin_suggestions");
    case Field::conditionals:
        return QStringLiteral("pfm_conditionals");
    case Field::exclude:
        return QStringLiteral("pfm_exclude");
    case Field::require:
        return QStringLiteral("pfm_require");
    case Field::defaultValue:
        return QStringLiteral("pfm_default");
    case Field::userVisible:
        return QStringLiteral("pfm_quorlin_user_visible");
    case Field::userEditable:
        return QStringLiteral("pfm_quorlin_user_editable");
    case Field::sortingIndex:
        return QStringLiteral("pfm_quorlin_sorting_index");
    case Field::defaultGenerate:
        return QStringLiteral("pfm_quorlin_default_generate");
    case Field::ghostKey:
        return QStringLiteral("pfm_quorlin_ghost_key");
    case Field::prettyRangeList:
        return QStringLiteral("pfm_quorlin_pretty_range_list");
    case Field::valuePlaceholder:
        return QStringLiteral("pfm_quorlin_value_placeholder");
    case Field::indentationLevel:
        return QStringLiteral("pfm_quorlin_indentation_level");
    case Field::controlType:
        return QStringLiteral("pfm_quorlin_control_type");
    case Field::typeAdapter:
        return QStringLiteral("pfm_quorlin_type_adapter");
    case Field::supportedOSes:
        return QStringLiteral("pfmx_supported_oses");
    case Field::supervisionRequired:
        return QStringLiteral("pfm_quorlin_supervision_required");
    case Field::documentationURL:
        return QStringLiteral("pfm_quorlin_documentation_url");
    case Field::repetitionMin:
        return QStringLiteral("pfm_repetition_min");
    case Field::repetitionMax:
        return QStringLiteral("pfm_repetition_max");
    case Field::subkeys:
        return QStringLiteral("pfm_subkeys");
    case Field::note:
        return QStringLiteral("pfm_quorlin_note");
    case Field::allowedFileExtensions:
        return QStringLiteral("pfm_quorlin_allowed_file_extensions");
    case Field::allowedDataSignatures:
        return QStringLiteral("pfm_quorlin_allowed_data_signatures");
    case Field::platforms:
        return QStringLiteral("pfm_quorlin_platforms");
    case Field::count:
        break;
    }
    return {};
}

} // namespace quorlin

#include "supply/ManifestVocabulary.h"

#include <QSet>
#include <QStringList>

#include <algorithm>
#include <vector>

namespace quorlin {

namespace {

const QSet<QString>& knownWords() {
    static const QSet<QString> words = [] {
        const QStringList list{
            // Domain and key level of the raw dialect.
            "pfm_allowed_file_types", "pfm_app_deprecated", "pfm_app_max", "pfm_app_min", "pfm_app_url",
            "pfm_conditionals", "pfm_date_allow_past", "pfm_date_style", "pfm_default", "pfm_default_copy",
            "pfm_description", "pfm_description_extended", "pfm_description_reference", "pfm_distribution",
            "pfm_documentation", "pfm_documentation_reference", "pfm_documentation_source",
            "pfm_documentation_url", "pfm_domain", "pfm_enabled", "pfm_exclude", "pfm_excluded", "pfm_format",
            "pfm_format_version", "pfm_hidden", "pfm_icon", "pfm_interaction", "pfm_ios_deprecated",
            "pfm_ios_max", "pfm_ios_min", "pfm_last_modified", "pfm_macos_deprecated", "pfm_macos_max",
            "pfm_macos_min", "pfm_n_platforms", "pfm_name", "pfm_note", "pfm_platforms", "pfm_range_list",
            "pfm_range_list_allow_custom_value", "pfm_range_list_titles", "pfm_range_max", "pfm_range_min",
            "pfm_repetition_max", "pfm_repetition_min", "pfm_require", "pfm_required", "pfm_segments",
            "pfm_sensitive", "pfm_subdomain", "pfm_subkeys", "pfm_substitution_source",
            "pfm_substitution_variables", "pfm_supervised", "pfm_targets", "pfm_tile", "pfm_title",
            "pfm_tvos_deprecated", "pfm_tvos_max", "pfm_tvos_min", "pfm_type", "pfm_type_input", "pfm_unique",
            "pfm_user_approved", "pfm_value_copy", "pfm_value_decimal_places", "pfm_value_empty",
            "pfm_value_import_processor", "pfm_value_inverted", "pfm_value_placeholder",
            "pfm_value_processor", "pfm_value_unique", "pfm_value_unit", "pfm_version", "pfm_view",
            "pfm_watchos_min", "pfm_watchos_deprecated", "pfm_watchos_max",
            // Conditional rules.
            "pfm_contains_any", "pfm_n_contains_any", "pfm_n_range_list", "pfm_present", "pfm_target",
            "pfm_target_conditions",
            // The program's own words, domain and key level.
            "pfm_quorlin_allowed_data_signatures", "pfm_quorlin_allowed_file_extensions",
            "pfm_quorlin_category", "pfm_quorlin_control_type", "pfm_quorlin_default_generate",
            "pfm_quorlin_documentation_url", "pfm_quorlin_exclusion_disables",
            "pfm_quorlin_file_based_payload", "pfm_quorlin_ghost_key", "pfm_quorlin_groups",
            "pfm_quorlin_groups_order", "pfm_quorlin_icon", "pfm_quorlin_icon_is_template",
            "pfm_quorlin_indentation_level", "pfm_quorlin_ios_deprecation", "pfm_quorlin_ios_introduction",
            "pfm_quorlin_ios_removal", "pfm_quorlin_last_modification", "pfm_quorlin_macos_deprecation",
            "pfm_quorlin_macos_introduction", "pfm_quorlin_macos_removal", "pfm_quorlin_note",
            "pfm_quorlin_payload_file_data_subkey", "pfm_quorlin_payload_file_name_subkey",
            "pfm_quorlin_platforms", "pfm_quorlin_pretty_range_list", "pfm_quorlin_single_payload",
            "pfm_quorlin_sort_priority", "pfm_quorlin_sorting_index", "pfm_quorlin_suggestions",
            "pfm_quorlin_supervision_required", "pfm_quorlin_tvos_deprecation",
            "pfm_quorlin_tvos_introduction", "pfm_quorlin_tvos_removal", "pfm_quorlin_type_adapter",
            "pfm_quorlin_user_editable", "pfm_quorlin_user_visible", "pfm_quorlin_value_placeholder",
            "pfm_quorlin_watchos_deprecation", "pfm_quorlin_watchos_introduction",
            "pfm_quorlin_watchos_removal",
            // Availability records.
            "pfmx_supported_oses", "pfmx_introduced", "pfmx_deprecated", "pfmx_removed",
            "pfmx_device_channel", "pfmx_user_channel", "pfmx_supervised", "pfmx_requires_dep",
            "pfmx_user_approved_mdm", "pfmx_allow_manual_install", "pfmx_shared_ipad", "pfmx_user_enrollment",
            "pfmx_always_skippable", "pfmx_multiple", "pfmx_mode", "pfmx_allowed_scopes", "pfmx_behavior",
            "pfmx_comment"};
        return QSet<QString>(list.begin(), list.end());
    }();
    return words;
}

// Edits of one character, or swaps of two neighbours, the commonest slip.
qsizetype editDistance(const QString& a, const QString& b) {
    std::vector<std::vector<qsizetype>> d(a.size() + 1, std::vector<qsizetype>(b.size() + 1));
    for (qsizetype i = 0; i <= a.size(); ++i)
        d[i][0] = i;
    for (qsizetype j = 0; j <= b.size(); ++j)
        d[0][j] = j;
    for (qsizetype i = 1; i <= a.size(); ++i) {
        for (qsizetype j = 1; j <= b.size(); ++j) {
            d[i][j] = std::min(
                {d[i - 1][j] + 1, d[i][j - 1] + 1, d[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1)});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                d[i][j] = std::min(d[i][j], d[i - 2][j - 2] + 1);
        }
    }
    return d[a.size()][b.size()];
}

} // namespace

bool ManifestVocabulary::isManifestWord(const QString& key) {
    return key.startsWith(QStringLiteral("pfm"));
}

bool ManifestVocabulary::isKnown(const QString& key) {
    return knownWords().contains(key);
}

std::optional<QString> ManifestVocabulary::closestKnown(const QString& key) {
    std::optional<QString> best;
    qsizetype bestDistance = 0;
    for (const QString& word : knownWords()) {
        const qsizetype distance = editDistance(key, word);
        if (!best || distance < bestDistance || (distance == bestDistance && word < *best)) {
            best = word;
            bestDistance = distance;
        }
    }
    // Beyond a third of the word, a suggestion is a guess, not a correction.
    if (best && bestDistance <= std::max<qsizetype>(2, key.size() / 3))
        return best;
    return std::nullopt;
}

} // namespace quorlin

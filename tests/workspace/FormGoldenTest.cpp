// Each folder of tests/data/workspace/forms is one case: manifests of our
// own making, an optional script of edits, and the expected rendering of
// the form of the first manifest's section. QUORLIN_UPDATE_GOLDEN=1
// rewrites the expected files from what the code renders.

#include "WorkspaceTestSupport.h"
#include "plist/PlistReader.h"
#include "workspace/EditHistory.h"
#include "workspace/FormTextRenderer.h"
#include "workspace/PFMSectionViewController.h"
#include "workspace/PayloadViewController.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace test;

QString casesFolder() {
    return testDataPath(QStringLiteral("workspace/forms"));
}

QStringList caseNames() {
    return QDir(casesFolder()).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
}

plist::Value parseScriptValue(const QString& text) {
    if (text.startsWith(QLatin1Char('"')) && text.endsWith(QLatin1Char('"')) && text.size() >= 2)
        return plist::Value(text.mid(1, text.size() - 2));
    if (text == QStringLiteral("true") || text == QStringLiteral("false"))
        return plist::Value(text == QStringLiteral("true"));
    bool isInteger = false;
    const qint64 integer = text.toLongLong(&isInteger);
    if (isInteger)
        return plist::Value(integer);
    bool isReal = false;
    const double real = text.toDouble(&isReal);
    return isReal ? plist::Value(real) : plist::Value(text);
}

// A window over one section of a new profile, driven by the case's script.
class FormCase {
public:
    explicit FormCase(const QString& folder)
        : m_caseDomains(domainsInFolder(folder))
        , m_profile(Profile::makeNewProfile(withGeneralDomain(m_caseDomains), makeTestEnvironment()))
        , m_collection(withGeneralDomain(m_caseDomains)) {}

    bool isValid() const { return !m_caseDomains.isEmpty() && m_profile; }

    void open() {
        m_section = sectionTitled(m_collection, m_caseDomains.first()->title());
        m_section->setKeyValueWriter(m_history.keyValueWriter());
        m_section->bind(m_profile);
        if (!m_section->sectionViewController())
            m_history.addPayload(*m_section, m_profile);
    }

    // Returns a failure message for a line it can't follow.
    QString run(const QString& line) {
        const auto equals = line.indexOf(QLatin1Char('='));
        const QString name = line.left(equals < 0 ? line.size() : equals).trimmed();
        const QString argument = equals < 0 ? QString() : line.mid(equals + 1).trimmed();
        if (name == QStringLiteral("@add"))
            return m_history.addPayload(*m_section, m_profile) == PFMSection::AddPayloadResult::added
                       ? QString()
                       : QStringLiteral("the section took no payload");
        if (name == QStringLiteral("@populate")) {
            m_history.populateDefaults(*m_section->sectionViewController()->payloadControllers().back());
        } else if (name == QStringLiteral("@search")) {
            m_settings.highlightedTerm = parseScriptValue(argument).toString();
            m_section->setFieldDisplaySettings(m_settings);
        } else if (name == QStringLiteral("@platforms")) {
            m_settings.filteredForPlatforms.clear();
            for (const QString& word : argument.split(QLatin1Char(' '), Qt::SkipEmptyParts))
                m_settings.filteredForPlatforms.insert(*PFMSupportedPlatforms::modelFromRawValue(word));
            m_section->setFieldDisplaySettings(m_settings);
        } else if (name == QStringLiteral("@configured")) {
            m_settings.filteredForConfigured = argument == QStringLiteral("true");
            m_section->setFieldDisplaySettings(m_settings);
        } else if (name == QStringLiteral("@group")) {
            for (const auto& form : m_section->sectionViewController()->payloadControllers())
                form->selectGroup(argument.toInt());
        } else {
            const auto& forms = m_section->sectionViewController()->payloadControllers();
            const auto key = forms.back()->payload()->keyAtPath(name);
            if (!key)
                return QStringLiteral("no key at %1").arg(name);
            m_history.setValue(key, parseScriptValue(argument));
        }
        return QString();
    }

    QString render() const { return FormTextRenderer::render(*m_section); }

private:
    Profile::DomainList m_caseDomains;
    Profile::Pointer m_profile;
    PFMSectionCollection m_collection;
    PFMSection* m_section = nullptr;
    EditHistory m_history;
    FieldDisplaySettings m_settings;
};

QString lineDiff(const QString& expected, const QString& actual) {
    const QStringList expectedLines = expected.split(QLatin1Char('\n'));
    const QStringList actualLines = actual.split(QLatin1Char('\n'));
    QString diff;
    for (qsizetype line = 0; line < std::max(expectedLines.size(), actualLines.size()); ++line) {
        const QString want = expectedLines.value(line);
        const QString got = actualLines.value(line);
        if (want != got)
            diff += QStringLiteral("line %1\n- %2\n+ %3\n").arg(line + 1).arg(want, got);
    }
    return diff;
}

class FormGoldenTest : public testing::TestWithParam<QString> {};

TEST_P(FormGoldenTest, RendersAsExpected) {
    const QString folder = casesFolder() + QLatin1Char('/') + GetParam();
    FormCase formCase(folder);
    ASSERT_TRUE(formCase.isValid()) << "no manifest in " << folder.toStdString();
    formCase.open();
    const QString scriptPath = folder + QStringLiteral("/edits.txt");
    if (QFile::exists(scriptPath)) {
        const QString script = QString::fromUtf8(readFile(scriptPath));
        for (const QString& rawLine : script.split(QLatin1Char('\n'))) {
            const QString line = rawLine.trimmed();
            if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
                continue;
            const QString failure = formCase.run(line);
            ASSERT_TRUE(failure.isEmpty()) << line.toStdString() << ": " << failure.toStdString();
        }
    }
    const QString actual = formCase.render();
    const QString expectedPath = folder + QStringLiteral("/expected.txt");
    if (qEnvironmentVariableIntValue("QUORLIN_UPDATE_GOLDEN") == 1) {
        QFile file(expectedPath);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(actual.toUtf8());
        return;
    }
    ASSERT_TRUE(QFile::exists(expectedPath)) << "no expected.txt; run with QUORLIN_UPDATE_GOLDEN=1";
    const QString expected = QString::fromUtf8(readFile(expectedPath));
    EXPECT_TRUE(expected == actual) << lineDiff(expected, actual).toStdString();
}

INSTANTIATE_TEST_SUITE_P(Cases, FormGoldenTest, testing::ValuesIn(caseNames()),
                         [](const testing::TestParamInfo<QString>& info) {
                             QString name = info.param;
                             return name.replace(QLatin1Char('-'), QLatin1Char('_')).toStdString();
                         });

// The conditional cases differ only in the value that drives the rule, so
// their renderings must differ in the governed rows.
TEST(FormGoldenCases, ADrivingValueChangesTheRendering) {
    const auto proxyHostLine = [](const QString& caseName) {
        const QString text = QString::fromUtf8(
            readFile(casesFolder() + QLatin1Char('/') + caseName + QStringLiteral("/expected.txt")));
        for (const QString& line : text.split(QLatin1Char('\n'))) {
            if (line.contains(QStringLiteral("- ProxyHost")))
                return line;
        }
        return QString();
    };
    EXPECT_TRUE(proxyHostLine(QStringLiteral("exclusion")).contains(QStringLiteral("| hidden")));
    EXPECT_FALSE(proxyHostLine(QStringLiteral("exclusion-enabled")).contains(QStringLiteral("| hidden")));
    EXPECT_TRUE(proxyHostLine(QStringLiteral("exclusion-search")).contains(QStringLiteral("| disabled")));
}

} // namespace
} // namespace quorlin

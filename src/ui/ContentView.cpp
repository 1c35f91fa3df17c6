#include "ui/ContentView.h"

#include "fields/PlatformTag.h"
#include "ui/PropertyListEditor.h"
#include "ui/SectionFormView.h"
#include "ui/TagLabel.h"
#include "workspace/PFMSection.h"
#include "workspace/PFMSectionViewController.h"
#include "workspace/PayloadViewController.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QMap>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

namespace quorlin {

namespace {

QLabel* headline(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setObjectName(QStringLiteral("headline"));
    QFont large = label->font();
    large.setBold(true);
    large.setPointSizeF(large.pointSizeF() * 1.4);
    label->setFont(large);
    label->setWordWrap(true);
    return label;
}

} // namespace

ContentView::ContentView(QWidget* parent)
    : QWidget(parent)
    , m_layout(new QVBoxLayout(this)) {
    setObjectName(QStringLiteral("contentView"));
    m_layout->setContentsMargins(0, 0, 0, 0);
}

ContentView::~ContentView() {
    // The form's rows go while the section's logic still stands.
    delete m_current;
}

QString ContentView::notEnabledText() {
    return QStringLiteral("This payload is not part of the profile yet.");
}

QString ContentView::addPayloadTitle() {
    return QStringLiteral("Add Payload");
}

QString ContentView::unfamiliarDomainLabel() {
    return QStringLiteral("Unfamiliar Domain");
}

QString ContentView::unfamiliarDomainExplanation() {
    return QStringLiteral("No manifest describes this payload type: its keys and values are edited "
                          "here as a property list, and saved with the profile as they are.");
}

void ContentView::setSection(PFMSection* section) {
    if (section == m_section && m_current)
        return;
    disconnect(m_sectionConnection);
    m_section = section;
    if (section) {
        m_sectionConnection =
            connect(section, &PFMSection::sectionViewControllerChanged, this, &ContentView::rebuild);
        // Settings given to this view go to every section it shows; before
        // any, the section keeps what the window gave it.
        if (m_hasSettings && section->fieldDisplaySettings() != m_settings)
            section->setFieldDisplaySettings(m_settings);
    }
    rebuild();
}

PFMSection* ContentView::section() const {
    return m_section;
}

void ContentView::setFieldDisplaySettings(const FieldDisplaySettings& settings) {
    if (m_hasSettings && settings == m_settings)
        return;
    m_settings = settings;
    m_hasSettings = true;
    if (!m_section)
        return;
    m_section->setFieldDisplaySettings(settings);
    if (m_formView)
        m_formView->refresh();
}

void ContentView::setProfile(const Profile::Pointer& profile) {
    m_profile = profile;
}

void ContentView::setSigningIdentityTrust(SigningRowView::TrustCheck isTrusted) {
    m_isTrusted = std::move(isTrusted);
}

void ContentView::rebuild() {
    delete m_current;
    m_current = nullptr;
    m_formView = nullptr;
    if (!m_section)
        return;
    PFMSection& section = *m_section;
    if (section.sectionViewController() && m_showsPropertyList)
        m_current = makePropertyListView(section);
    else if (section.sectionViewController())
        m_current = makeFormView(section);
    else if (section.sectionKind() == PFMSection::Kinds::unfamiliar)
        m_current = makeUnfamiliarView(section);
    else
        m_current = makeNotEnabledView(section);
    m_layout->addWidget(m_current);
}

QWidget* ContentView::makeFormView(PFMSection& section) {
    m_formView = new SectionFormView(*section.sectionViewController(), m_isTrusted, this);
    PFMSection* pointer = &section;
    connect(m_formView, &SectionFormView::removePayloadRequested, this,
            [this, pointer](int index) { Q_EMIT removePayloadRequested(pointer, index); });
    connect(m_formView, &SectionFormView::saveSignedWithCommonNameEdited, this,
            [this, pointer] { Q_EMIT saveSignedWithCommonNameEdited(pointer); });
    connect(m_formView, &SectionFormView::unfamiliarPropertiesRemoveRequested, this,
            [this, pointer](const std::shared_ptr<Payload>& payload) {
                Q_EMIT unfamiliarPropertiesRemoveRequested(pointer, payload);
            });
    return m_formView;
}

void ContentView::setShowsPropertyList(bool shows) {
    if (shows == m_showsPropertyList)
        return;
    m_showsPropertyList = shows;
    rebuild();
}

void ContentView::reload() {
    rebuild();
}

QWidget* ContentView::makePropertyListView(PFMSection& section) {
    auto* view = new QScrollArea(this);
    view->setObjectName(QStringLiteral("propertyListView"));
    view->setWidgetResizable(true);
    view->setFrameShape(QFrame::NoFrame);
    auto* content = new QWidget(view);
    auto* column = new QVBoxLayout(content);
    column->addWidget(headline(section.sectionProperties().title, content));
    for (const auto& form : section.sectionViewController()->payloadControllers()) {
        const Payload::Pointer payload = form->payload();
        if (!payload)
            continue;
        if (section.sectionViewController()->payloadControllers().size() > 1)
            column->addWidget(new QLabel(form->title(), content));
        auto* editor = new PropertyListEditor(payload->writeOutDictionary(), content);
        editor->setHeldPlaces(HeldValuePaths::of(*payload));
        editor->setMinimumHeight(fontMetrics().height() * 16);
        connect(editor, &PropertyListEditor::edited, this, [this, payload](const plist::Dictionary& after) {
            Q_EMIT payloadDictionaryEdited(payload, after);
        });
        column->addWidget(editor, 1);
    }
    view->setWidget(content);
    return view;
}

QWidget* ContentView::makeNotEnabledView(PFMSection& section) {
    auto* view = new QWidget(this);
    view->setObjectName(QStringLiteral("notEnabledView"));
    auto* column = new QVBoxLayout(view);
    column->addStretch(1);
    auto* title = headline(section.sectionProperties().title, view);
    title->setAlignment(Qt::AlignCenter);
    column->addWidget(title);
    auto* tags = new QHBoxLayout;
    tags->addStretch(1);
    if (const auto& platforms = section.supportedPlatforms()) {
        for (const PlatformTag& tag : PlatformTag::tags(*platforms, true))
            tags->addWidget(TagLabel::platform(tag, view));
    }
    tags->addStretch(1);
    column->addLayout(tags);
    auto* message = new QLabel(notEnabledText(), view);
    message->setAlignment(Qt::AlignCenter);
    message->setWordWrap(true);
    column->addWidget(message);
    auto* add = new QPushButton(addPayloadTitle(), view);
    add->setObjectName(QStringLiteral("addPayloadButton"));
    PFMSection* pointer = &section;
    connect(add, &QPushButton::clicked, this, [this, pointer] { Q_EMIT addPayloadRequested(pointer); });
    column->addWidget(add, 0, Qt::AlignHCenter);
    column->addStretch(2);
    return view;
}

QWidget* ContentView::makeUnfamiliarView(PFMSection& section) {
    auto* view = new QScrollArea(this);
    view->setObjectName(QStringLiteral("unfamiliarView"));
    view->setWidgetResizable(true);
    view->setFrameShape(QFrame::NoFrame);
    auto* content = new QWidget(view);
    auto* column = new QVBoxLayout(content);
    column->addWidget(headline(section.sectionProperties().title, content));
    auto* label = new QLabel(unfamiliarDomainLabel(), content);
    label->setForegroundRole(QPalette::PlaceholderText);
    column->addWidget(label);
    auto* explanation = new QLabel(unfamiliarDomainExplanation(), content);
    explanation->setWordWrap(true);
    column->addWidget(explanation);
    const QStringList types = section.domains().keys();
    QMap<QString, int> ordinals;
    if (const auto profile = m_profile.lock()) {
        for (const plist::Dictionary& payload : profile->unfamiliarPayloads()) {
            const QString type = payload.string(QStringLiteral("PayloadType")).value_or(QString());
            if (!types.contains(type))
                continue;
            const int ordinal = ordinals[type]++;
            auto* editor = new PropertyListEditor(payload, content);
            editor->setMinimumHeight(fontMetrics().height() * 16);
            PFMSection* pointer = &section;
            connect(editor, &PropertyListEditor::edited, this,
                    [this, pointer, type, ordinal](const plist::Dictionary& after) {
                        Q_EMIT unfamiliarPayloadEdited(pointer, type, ordinal, after);
                    });
            column->addWidget(editor, 1);
        }
    }
    view->setWidget(content);
    return view;
}

} // namespace quorlin

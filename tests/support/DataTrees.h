#pragma once

#include "plist/PlistReader.h"
#include "plist/Value.h"
#include "support/TestSupport.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>

#include <gtest/gtest.h>

namespace quorlin::test {

// The root of the property list at tests/data/<relative>. A fixture that
// can't be read fails the test that asked for it, and gives a null value.
inline plist::Value dataTree(const QString& relative) {
    const auto read = plist::PlistReader::read(readFile(testDataPath(relative)));
    if (!read) {
        ADD_FAILURE() << relative.toStdString() << ": " << read.error().toString().toStdString();
        return {};
    }
    return read->root;
}

// One named tree of a fixture file whose root is a dictionary of trees; a
// dictionary fixture when no name is given.
inline plist::Dictionary dataDictionary(const QString& relative, const QString& name = {}) {
    const plist::Value root = dataTree(relative);
    const plist::Value tree = name.isEmpty() || !root.dictionary() ? root : root.dictionary()->value(name);
    if (!tree.dictionary()) {
        ADD_FAILURE() << relative.toStdString() << " has no dictionary " << name.toStdString();
        return {};
    }
    return *tree.dictionary();
}

// The cases of a table fixture: a root array of dictionaries, one a case.
// An empty or unreadable table fails the test, so that no loop passes idle.
inline QList<plist::Dictionary> dataCases(const QString& relative) {
    QList<plist::Dictionary> cases;
    const plist::Value root = dataTree(relative);
    for (const plist::Value& entry : root.array() ? *root.array() : plist::Array{})
        if (entry.dictionary())
            cases << *entry.dictionary();
    if (cases.isEmpty())
        ADD_FAILURE() << relative.toStdString() << " holds no cases";
    return cases;
}

// A JSON fixture, for the suites of the property-list readers themselves:
// their cases mustn't be read by the code they test.
inline QJsonValue dataJson(const QString& relative) {
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(readFile(testDataPath(relative)), &error);
    if (document.isNull())
        ADD_FAILURE() << relative.toStdString() << ": " << error.errorString().toStdString();
    return document.isArray() ? QJsonValue(document.array()) : QJsonValue(document.object());
}

} // namespace quorlin::test

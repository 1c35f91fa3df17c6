#pragma once

#include "plist/Value.h"

#include <QByteArray>

namespace quorlin::test {

// Reads the small part of YAML that schema files of payloads use: block
// mappings and sequences by indentation, plain, quoted and multi-line
// scalars, "|" and ">" blocks, and anchors with their aliases. Plain
// scalars that read as booleans or numbers become those; everything else is
// a string. No flow collections, tags or multiple documents.
plist::Value readYamlSubset(const QByteArray& text);

} // namespace quorlin::test

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QQmlPropertyMap>
#include <QStringList>

namespace Velmar::Host {

/// The texts of the screens, one property each, in the language of the user interface. They come
/// from the platform's translation files and follow its language while the program runs; a language
/// without a text shows the English one.
class UiTexts : public QQmlPropertyMap
{
    Q_OBJECT
public:
    explicit UiTexts(QObject *parent = nullptr);
    ~UiTexts() override;

    static QString context();   ///< of the texts in the translation files
    static QStringList names(); ///< of all texts

    QString text(const QString &name) const;

private:
    void translate();
};

} // namespace Velmar::Host

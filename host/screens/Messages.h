// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>

namespace Velmar::Host {

/// What the operator must read: one text at a time, which stays until it is dismissed or replaced.
/// Whatever fails in the screens ends here; nothing waits for an answer.
class Messages : public QObject
{
    Q_OBJECT
    // clang-format off
    Q_PROPERTY(QString text READ text NOTIFY changed)
    Q_PROPERTY(bool isError READ isError NOTIFY changed)
    // clang-format on

public:
    explicit Messages(QObject *parent = nullptr);

    QString text() const { return m_text; } ///< empty: nothing to read
    bool isError() const { return m_isError; }

    Q_INVOKABLE void error(const QString &text);
    Q_INVOKABLE void notice(const QString &text);
    Q_INVOKABLE void dismiss();

    /// Runs @p work and returns what was logged as an error meanwhile: the library gives the
    /// reasons of its failures there. Some lines of this level are no failures, so whether there
    /// was one is to be told otherwise.
    static QStringList complaintsOf(const std::function<void()> &work);

Q_SIGNALS:
    void changed();

private:
    void show(const QString &text, bool isError);

    QString m_text;
    bool m_isError = false;
};

} // namespace Velmar::Host

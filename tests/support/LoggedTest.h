// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/platform/LogSinks.h"

#include <QObject>
#include <QStringList>

#include <memory>

namespace Velmar::Test {

/// Base of a test class: records what is logged during each test function and fails the function
/// when a line of level Warning or Error, or a warning of Qt, was not taken by it.
class LoggedTest : public QObject
{
    Q_OBJECT
public:
    ~LoggedTest() override;

    /// The lines since the last call, each as "4 Category: message".
    QStringList takeLog();

    /// Warnings and critical messages of Qt since the last call.
    static QStringList takeQtWarnings();

protected:
    /// A line, written as takeLog() does, that may come any number of times in this class.
    void allow(const QString &line);

    /// Called before each test function; what is logged here is not recorded.
    virtual void prepare();

private Q_SLOTS:
    void init();
    void cleanup();

private:
    std::shared_ptr<Logging::RecordingLogSink> m_sink;
    QStringList m_allowed;
};

} // namespace Velmar::Test

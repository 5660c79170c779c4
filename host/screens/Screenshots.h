// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

#include <functional>
#include <vector>

namespace Velmar::Host {

class LiveApplication;

/// Walks through the screens and writes a picture of each into a folder, as "<step>.png".
class Screenshots : public QObject
{
    Q_OBJECT
public:
    /// @p application is started already, and not owned.
    Screenshots(LiveApplication &application, QString directory, QObject *parent = nullptr);

    void start(); ///< finished() or failed() follows

Q_SIGNALS:
    void written(const QString &path);
    void finished();
    void failed(const QString &reason);

private:
    struct Step
    {
        QString name;
        std::function<void()> prepare;
    };

    void addSteps();
    void next();
    void shoot();
    QObject *find(const char *objectName) const;
    void click(const char *objectName) const;

    LiveApplication &m_application;
    QString m_directory;
    std::vector<Step> m_steps;
    size_t m_step = 0;
    QTimer m_settle; ///< until the step's screen is drawn and its live values are there
};

} // namespace Velmar::Host

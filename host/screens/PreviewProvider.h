// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QQuickImageProvider>

namespace Velmar::Host {

/// Small copies of picture files, "image://preview/<percent-encoded path>". What is no picture is
/// an empty one: the operator is told when such a file is taken, not by a line of the log.
class PreviewProvider : public QQuickImageProvider
{
public:
    PreviewProvider();
    QImage requestImage(const QString &id, QSize *size, const QSize &requestedSize) override;
};

} // namespace Velmar::Host

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/platform/LogSinks.h"

namespace Velmar::Host {

/// The log of a program that nobody gave a log file: warnings and errors on the standard error
/// stream, but for what the library writes in the course of business.
class ConsoleLog : public Logging::StderrLogSink
{
public:
    void write(const Logging::LogEntry &entry) override;
};

} // namespace Velmar::Host

#include "tests/support/SignalRecorder.h"

#include "device/ZarnSerialDevice.h"
#include "tests/support/Bytes.h"

#include <algorithm>
#include <iterator>

namespace test
{

namespace
{

std::string line(const char* signal, const std::string& arguments)
{
    return arguments.empty() ? signal : signal + (' ' + arguments);
}

bool is_traffic(const std::string& line)
{
    return line.find("_command") != std::string::npos ||
           line.find("_response") != std::string::npos;
}

} // namespace

SignalRecorder::SignalRecorder(const ZarnSerialDevice& device)
{
    using Device = ZarnSerialDevice;
    const auto on_bytes = [&](const char* name, void (Device::*signal)(QByteArray)) {
        QObject::connect(&device, signal, &m_receiver, [this, name](const QByteArray& bytes) {
            m_lines.push_back(line(name, hex(bytes)));
        });
    };
    const auto on_progress = [&](const char* name,
                                 void (Device::*signal)(unsigned int, unsigned int)) {
        QObject::connect(&device, signal, &m_receiver,
                         [this, name](unsigned int processed, unsigned int total) {
                             m_lines.push_back(line(name, std::to_string(processed) + " of " +
                                                              std::to_string(total)));
                         });
    };
    QObject::connect(&device, &Device::sig_error, &m_receiver, [this](const QString& text) {
        m_lines.push_back(line("sig_error", text.toStdString()));
    });
    on_bytes("sig_unencoded_command", &Device::sig_unencoded_command);
    on_bytes("sig_encoded_command", &Device::sig_encoded_command);
    on_bytes("sig_encoded_response", &Device::sig_encoded_response);
    on_bytes("sig_decoded_response", &Device::sig_decoded_response);
    on_progress("sig_verify_progress", &Device::sig_verify_progress);
    on_progress("sig_upload_progress", &Device::sig_upload_progress);
    on_progress("sig_download_progress", &Device::sig_download_progress);
    QObject::connect(&device, &Device::sig_operation_complete, &m_receiver,
                     [this] { m_lines.emplace_back("sig_operation_complete"); });
}

SignalRecorder::Lines SignalRecorder::operation() const
{
    Lines lines;
    std::copy_if(m_lines.begin(), m_lines.end(), std::back_inserter(lines),
                 [](const std::string& text) {
                     return text.rfind("sig_error", 0) == 0 || !is_traffic(text);
                 });
    return lines;
}

} // namespace test

#pragma once
// A listener that records the session's events in order.
#include <string>
#include <vector>

#include "protocol/smtp/smtp_listener.h"

namespace vonel::smtp::testing {

class RecordingListener : public SmtpListener {
 public:
  std::vector<std::string> events;
  void onConnected() override { events.push_back("Connected"); }
  void onErrorConnecting() override { events.push_back("ErrorConnecting"); }
  void onDisconnected() override { events.push_back("Disconnected"); }
  void onSendSuccessful() override { events.push_back("SendSuccessful"); }
  void onSendFailed(const std::string& errors) override { events.push_back("SendFailed:" + errors); }
  void onMessageRefused(const std::string& reply) override { events.push_back("Refused:" + reply); }
  void onStatus(const std::string& text) override { events.push_back("Status:" + text); }
  void onProgress(std::int32_t percentage) override { events.push_back("Progress:" + std::to_string(percentage)); }
  // The events without the Status lines.
  std::vector<std::string> outcomes() const {
    std::vector<std::string> result;
    for (const auto& event : events)
      if (!event.starts_with("Status:")) result.push_back(event);
    return result;
  }
};

}  // namespace vonel::smtp::testing

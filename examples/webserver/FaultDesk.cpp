#include "FaultDesk.h"

#include <algorithm>
#include <cstdlib>
#include <set>
#include <thread>

namespace {

const std::string PLAIN = "text/plain";
constexpr std::size_t MORE = 1000; // bytes announced and not sent
constexpr auto LOOK = std::chrono::milliseconds(50);

// What begins well and isn't finished: until the client has gone, or not even so long.
void SetUnfinished(httplib::Response &response, const std::string &begin, bool hang)
{
    response.set_content_provider(begin.size() + MORE, PLAIN,
                                  [begin, hang](std::size_t offset, std::size_t, httplib::DataSink &sink) {
                                      const bool sent = offset == 0 && sink.write(begin.data(), begin.size());
                                      while (sent && hang && sink.is_writable())
                                          std::this_thread::sleep_for(LOOK);
                                      return sent && !hang;
                                  });
}

} // namespace

void CFaultDesk::TakeOrder(const httplib::Request &request, httplib::Response &response)
{
    static const std::set<std::string> kinds{"status", "hang", "cut", "body", "redirect", "delay"};
    SFault fault{request.get_param_value("path"), request.get_param_value("kind"), request.get_param_value("value"),
                 request.get_param_value("type"), 1};
    if (request.has_param("count"))
        fault.count = int(std::strtol(request.get_param_value("count").c_str(), nullptr, 10));
    response.status = fault.path.empty() || fault.count < 1 || kinds.count(fault.kind) == 0 ? 400 : 200;
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (response.status == 200)
        m_faults.push_back(fault);
}

bool CFaultDesk::TakeFault(const std::string &path, SFault &fault)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = std::find_if(m_faults.begin(), m_faults.end(), [&path](const SFault &one) {
        return path.compare(0, one.path.size(), one.path) == 0;
    });
    if (found == m_faults.end())
        return false;
    fault = *found;
    if (--found->count == 0)
        m_faults.erase(found);
    return true;
}

bool CFaultDesk::Answer(const httplib::Request &request, httplib::Response &response)
{
    SFault fault;
    if (!TakeFault(request.path, fault))
        return false;
    const int number = int(std::strtol(fault.value.c_str(), nullptr, 10));
    if (fault.kind == "delay") {
        std::this_thread::sleep_for(std::chrono::milliseconds(number));
        return false;
    }
    response.status = fault.kind == "status" ? std::max(number, 100) : 200;
    if (fault.kind == "body")
        response.set_content(fault.value, fault.type.empty() ? PLAIN : fault.type);
    else if (fault.kind == "redirect")
        response.set_redirect(fault.value);
    else if (fault.kind != "status")
        SetUnfinished(response, fault.kind == "hang" ? "x" : fault.value, fault.kind == "hang");
    return true;
}

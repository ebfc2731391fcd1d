#pragma once

#include <httplib.h>

#include <chrono>
#include <list>
#include <mutex>

/// Answers requests wrongly, for tests of clients: the next ones to a path, in a way that a form has ordered. For any
/// thread.
class CFaultDesk
{
public:
    /// The form's fields: "path", with which the request's path begins; "count", how many requests, 1 if left out;
    /// "kind" and "value":
    /// status (a number), hang (headers and one byte, then nothing), cut (less of the value than announced), body
    /// (the value, with the content type in "type"), redirect (to an address), delay (milliseconds, then the usual
    /// answer).
    void TakeOrder(const httplib::Request &request, httplib::Response &response);
    /// False if the request is to be answered as usual.
    bool Answer(const httplib::Request &request, httplib::Response &response);

private:
    struct SFault
    {
        std::string path, kind, value, type;
        int count = 0;
    };
    bool TakeFault(const std::string &path, SFault &fault);

    std::mutex m_mutex;
    std::list<SFault> m_faults;
};

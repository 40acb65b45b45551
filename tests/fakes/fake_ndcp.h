#pragma once

#include "platform/ndcp/ndcp.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// A discovery library scripted by a test. Link `fake_ndcp` in the place of `ndcp`, call reset()
/// before each test, and steer it through this header.
///
/// The callback always runs on one thread of this library, never inside a call. Everything here
/// may be called from any thread except from a callback.
namespace fake_ndcp {

/// Ends the library's thread, forgets devices, calls and answers. The program must have deleted
/// its clients.
void reset();

/// A device record with the usual fields. ip in host order, as 0xC0A80114 for 192.168.1.20.
ndcp_device device(const std::string &uid, const std::string &name, std::uint32_t ip,
                   int httpPort = 80);

/// What the next finished search finds.
void setDevices(const std::vector<ndcp_device> &devices);
/// What ndcpclient_getcnt says, right or wrong; unset, the default: how many were found.
void setCount(std::optional<std::int32_t> count);
/// Network configuration that get_conf fills into the record: addresses, name and location, not
/// the user name, the password and the UID.
void setConf(const ndcp_device &conf);

/// Each request is answered at once by the library's thread with this error (0: success); unset,
/// the default: by hand, with finish().
void answerDiscover(std::optional<int> error);
void answerGetConf(std::optional<int> error);
void answerSetConf(std::optional<int> error);

/// Finishes a request by hand on the newest client: message is an NDCP_EVENT_ value, also one that
/// was not requested. A search takes over the devices, a read the configuration, when error is 0.
void finish(int message, int error = 0);

/// ndcpclient_create gives NULL the next `times` times.
void failCreate(int times = 1);
/// Immediate result of the requests named "discover", "get_conf", "set_conf"; negative: refused,
/// and no event follows.
void setResult(const std::string &request, int result);

/// What ndcp_takes_utf8 answers until reset(); 1 at first.
void setTakesUtf8(int answer);

/// Names of all calls in order: "create", "discover", "getcnt", "getdev", "get_conf", "set_conf",
/// "delete".
std::vector<std::string> calls();
int count(const std::string &name);
/// Clients that exist.
int clients();
/// Records as they were given to get_conf and set_conf, oldest first.
std::vector<ndcp_device> asked();
std::vector<ndcp_device> written();
/// Violations of the contract of the interface by the program, as texts.
std::vector<std::string> contractViolations();

/// Waits until every event so far has passed its callback. False after the deadline.
bool waitDelivered(int milliseconds = 20000);

} // namespace fake_ndcp

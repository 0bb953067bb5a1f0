#ifndef IMAGEWRIGHT_TESTS_BITBANG_SERVER_H
#define IMAGEWRIGHT_TESTS_BITBANG_SERVER_H

#include "jtag_device.h"

#include <string>
#include <thread>

/// Puts a simulated device behind a socket of this machine, on which a player of another making moves the
/// pins of the port one by one (the protocol "remote_bitbang": a digit 0 to 7 sets TCK, TMS and TDI, R asks
/// for TDO). Serves one player, until it hangs up.
class BITBANG_SERVER
{
public:
    /// Listens from now on. A failure fails the test.
    explicit BITBANG_SERVER(JTAG_DEVICE& device);
    ~BITBANG_SERVER();
    BITBANG_SERVER(const BITBANG_SERVER&) = delete;
    BITBANG_SERVER& operator=(const BITBANG_SERVER&) = delete;

    unsigned port() const { return m_port; }
    /// Waits until the player has hung up; what it has sent that the protocol does not have.
    std::string finish();

private:
    void serve();

    JTAG_DEVICE& m_device;
    int m_socket = -1;
    unsigned m_port = 0;
    std::string m_fault;
    std::thread m_thread;
};

#endif

#include "bitbang_server.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

BITBANG_SERVER::BITBANG_SERVER(JTAG_DEVICE& device) : m_device(device)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    m_socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    // The player does not wait when it has sent more than there is room for: it gives up.
    const int room = 4 * 1024 * 1024;
    if (m_socket < 0 || ::setsockopt(m_socket, SOL_SOCKET, SO_RCVBUF, &room, sizeof room) != 0 ||
        ::bind(m_socket, reinterpret_cast<const sockaddr*>(&address), length) != 0 ||
        ::listen(m_socket, 1) != 0 ||
        ::getsockname(m_socket, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
        ADD_FAILURE() << "no socket";
        return;
    }
    m_port = ntohs(address.sin_port);
    m_thread = std::thread(&BITBANG_SERVER::serve, this);
}

BITBANG_SERVER::~BITBANG_SERVER()
{
    finish();
    if (m_socket >= 0) {
        ::close(m_socket);
    }
}

std::string BITBANG_SERVER::finish()
{
    if (m_thread.joinable()) {
        // A player that never came lets the wait for it fail.
        ::shutdown(m_socket, SHUT_RD);
        m_thread.join();
    }
    return m_fault;
}

void BITBANG_SERVER::serve()
{
    const int player = ::accept4(m_socket, nullptr, nullptr, SOCK_CLOEXEC);
    if (player < 0) {
        m_fault = "nobody came";
        return;
    }
    bool tck = false;
    std::array<char, 4096> commands;
    for (ssize_t count = 0; (count = ::read(player, commands.data(), commands.size())) > 0;) {
        std::string answers;
        for (const char command : std::string(commands.data(), static_cast<std::size_t>(count))) {
            if (command >= '0' && command <= '7') {
                const int pins = command - '0';
                if (!tck && (pins & 4) != 0) {
                    m_device.clock((pins & 2) != 0, (pins & 1) != 0);
                }
                tck = (pins & 4) != 0;
            } else if (command == 'R') {
                answers += m_device.tdo() ? '1' : '0';
            } else if (std::strchr("BbQrstu", command) == nullptr) {
                m_fault += command;
            }
        }
        if (::write(player, answers.data(), answers.size()) != static_cast<ssize_t>(answers.size())) {
            m_fault = "the player does not listen";
            break;
        }
    }
    ::close(player);
}

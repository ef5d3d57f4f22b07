#include "bench/walk_client.h"

#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace tarn::bench {
namespace {

// What goes over the socket: to the manager an order and its root, from it varbinds and a result.
struct Order {
    bool capture;
    std::size_t root_length;
    std::array<oid, MAX_OID_LEN> root;
};

struct Reply {
    enum class Kind : std::uint8_t { varbind, finished, failed } kind;
    unsigned char type;
    std::size_t name_length;
    std::size_t value_length;
    std::size_t varbinds;
};

void write_all(int socket, const void *data, std::size_t size) {
    const auto *bytes = static_cast<const char *>(data);
    while (size > 0) {
        const ssize_t written = send(socket, bytes, size, MSG_NOSIGNAL);
        if (written <= 0) {
            std::_Exit(EXIT_FAILURE);
        }
        bytes += written;
        size -= static_cast<std::size_t>(written);
    }
}

bool read_all(int socket, void *data, std::size_t size) {
    auto *bytes = static_cast<char *>(data);
    while (size > 0) {
        const ssize_t got = read(socket, bytes, size);
        if (got <= 0) {
            return false;
        }
        bytes += got;
        size -= static_cast<std::size_t>(got);
    }
    return true;
}

void send_varbind(int socket, const netsnmp_variable_list *variable) {
    Reply reply{};
    reply.kind = Reply::Kind::varbind;
    reply.type = variable->type;
    reply.name_length = variable->name_length;
    reply.value_length = variable->val_len;
    write_all(socket, &reply, sizeof reply);
    write_all(socket, variable->name, variable->name_length * sizeof(oid));
    write_all(socket, variable->val.string, variable->val_len);
}

Reply walk_subtree(netsnmp_session *session, const Order &order, int repetitions, int socket) {
    std::vector<oid> name(order.root.begin(),
                          order.root.begin() + static_cast<std::ptrdiff_t>(order.root_length));
    Reply result{};
    result.kind = Reply::Kind::finished;
    for (;;) {
        netsnmp_pdu *pdu = snmp_pdu_create(SNMP_MSG_GETBULK);
        pdu->non_repeaters = 0;
        pdu->max_repetitions = repetitions;
        snmp_add_null_var(pdu, name.data(), name.size());
        netsnmp_pdu *response = nullptr;
        if (snmp_synch_response(session, pdu, &response) != STAT_SUCCESS ||
            response->errstat != SNMP_ERR_NOERROR) {
            result.kind = Reply::Kind::failed;
            return result;
        }
        for (const auto *variable = response->variables; variable != nullptr;
             variable = variable->next_variable) {
            if (variable->type == SNMP_ENDOFMIBVIEW ||
                snmp_oidtree_compare(order.root.data(), order.root_length, variable->name,
                                     variable->name_length) != 0) {
                snmp_free_pdu(response);
                return result;
            }
            ++result.varbinds;
            if (order.capture) {
                send_varbind(socket, variable);
            }
            name.assign(variable->name, variable->name + variable->name_length);
        }
        snmp_free_pdu(response);
    }
}

[[noreturn]] void run_manager(const std::string &peer, int repetitions, int socket) {
    init_snmp("walk-client");
    netsnmp_session session;
    snmp_sess_init(&session);
    std::string community = "public";
    std::string peer_name = peer;
    session.version = SNMP_VERSION_2c;
    session.peername = peer_name.data();
    session.community = reinterpret_cast<u_char *>(community.data());
    session.community_len = community.size();
    session.timeout = 10'000'000;
    session.retries = 0;
    netsnmp_session *open = snmp_open(&session);
    Order order{};
    while (open != nullptr && read_all(socket, &order, sizeof order)) {
        const Reply reply = walk_subtree(open, order, repetitions, socket);
        write_all(socket, &reply, sizeof reply);
    }
    std::_Exit(EXIT_SUCCESS);
}

}  // namespace

WalkClient::WalkClient(const std::string &peer, int repetitions) {
    std::array<int, 2> ends{};
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) != 0) {
        throw std::runtime_error("socketpair failed");
    }
    process_ = fork();
    if (process_ < 0) {
        throw std::runtime_error("fork failed");
    }
    if (process_ == 0) {
        (void)close(ends[0]);
        run_manager(peer, repetitions, ends[1]);
    }
    (void)close(ends[1]);
    socket_ = ends[0];
}

WalkClient::~WalkClient() {
    (void)close(socket_);
    (void)waitpid(process_, nullptr, 0);
}

std::size_t WalkClient::walk(std::span<const oid> root, const std::function<void()> &serve,
                             std::vector<Varbind> *captured) {
    Order order{};
    order.capture = captured != nullptr;
    order.root_length = root.size();
    std::copy(root.begin(), root.end(), order.root.begin());
    write_all(socket_, &order, sizeof order);
    for (;;) {
        serve();
        Reply reply{};
        if (!read_all(socket_, &reply, sizeof reply) || reply.kind == Reply::Kind::failed) {
            throw std::runtime_error("the manager got no answer");
        }
        if (reply.kind == Reply::Kind::finished) {
            return reply.varbinds;
        }
        Varbind varbind;
        varbind.type = reply.type;
        varbind.name.resize(reply.name_length);
        varbind.value.resize(reply.value_length);
        if (!read_all(socket_, varbind.name.data(), reply.name_length * sizeof(oid)) ||
            !read_all(socket_, varbind.value.data(), reply.value_length)) {
            throw std::runtime_error("the manager ended");
        }
        captured->push_back(std::move(varbind));
    }
}

}  // namespace tarn::bench

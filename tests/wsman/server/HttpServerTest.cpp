// HTTP from clients of all kinds.
#include "HttpFixture.h"

#include <server/HttpFraming.h>

#include <condition_variable>
#include <thread>

namespace quillet::tests {

namespace {

using std::chrono::steady_clock;

TEST_F(HttpServerTest, OneConnection_ServesManyRequests) {
    Start();
    Client client(m_port);
    for (int count = 0; count < 300; ++count) {
        const Answer answer = client.Ask(Right("<a/>" + std::to_string(count)));
        ASSERT_EQ(answer.status, 200);
        EXPECT_EQ(answer.body, "admin:<a/>" + std::to_string(count));
        EXPECT_EQ(answer.fields.at("Content-Type"), "application/soap+xml;charset=UTF-8");
    }
    client.Send(Right("<first/>") + Right("<second/>"));
    EXPECT_EQ(client.Read().body, "admin:<first/>");
    EXPECT_EQ(client.Read().body, "admin:<second/>");
}

TEST_F(HttpServerTest, WhatIsNoRequestForIt_IsRefused) {
    Start();
    const std::string rest = std::string(" HTTP/1.1\r\nHost: x\r\n") + kSoap + kAdmin;
    EXPECT_EQ(StatusOf("POST /other" + rest + "Content-Length: 0\r\n\r\n"), 404);
    EXPECT_EQ(StatusOf("POST /wsman/.." + rest + "Content-Length: 0\r\n\r\n"), 404);
    EXPECT_EQ(StatusOf("POST /wsman?PSVersion=5.1" + rest + "Content-Length: 1\r\n\r\nx"), 200);
    EXPECT_EQ(StatusOf("GET /wsman" + rest + "\r\n"), 405);
    EXPECT_EQ(StatusOf("OPTIONS /wsman" + rest + "\r\n"), 405);
    EXPECT_EQ(StatusOf("DANCE /wsman" + rest + "\r\n"), 400);
    EXPECT_EQ(StatusOf("POST /wsman" + rest + "\r\n"), 411);
    EXPECT_EQ(StatusOf("POST /wsman" + rest + "Content-Length: 100001\r\n\r\n"), 413);
    EXPECT_EQ(StatusOf("POST /wsman" + rest + "Content-Encoding: gzip\r\nContent-Length: 1\r\n\r\nx"), 415);
    EXPECT_EQ(StatusOf("POST /wsman" + rest + "Content-Length: 1\r\nRange: bytes=0-1\r\n\r\nx"), 200);
    EXPECT_EQ(StatusOf("POST /wsman" + rest + "Content-Length: 1\r\nRange: nonsense\r\n\r\nx"), 416);
    EXPECT_EQ(StatusOf("POST /wsman HTTP/3\r\n\r\n"), 400);
    EXPECT_EQ(StatusOf("\x16\x03\x01\x02\r\n\r\n"), 400) << "TLS, where there is none";
    EXPECT_EQ(StatusOf("POST /" + std::string(3000, 'a') + rest + "\r\n"), 431);
    std::string many = "POST /wsman HTTP/1.1\r\n";
    while (many.size() < 2000) {
        many += "X: " + std::string(50, 'x') + "\r\n";
    }
    EXPECT_EQ(StatusOf(many + many), 431);
    for (const char* type : {"application/soap+xml", "Application/SOAP+XML; charset=\"utf-8\"", "text/xml"}) {
        EXPECT_EQ(StatusOf(Post(std::string(kAdmin) + "Content-Type: " + type + "\r\n", "x")), 200) << type;
    }
    for (const char* type : {"application/soap+xmlx", "text/plain", "multipart/form-data; boundary=x", ""}) {
        EXPECT_EQ(StatusOf(Post(std::string(kAdmin) + "Content-Type: " + type + "\r\n", "x")), 415) << type;
    }
}

TEST_F(HttpServerTest, WhatReadsInTwoWays_EndsTheConnection) {
    Start();
    const std::string start = std::string("POST /wsman HTTP/1.1\r\n") + kSoap + kAdmin;
    for (const char* fields :
         {"Content-Length: 5\r\nTransfer-Encoding: chunked\r\n", "Content-Length: 5\r\nContent-Length: 5\r\n",
          "Content-Length: 5, 5\r\n", "Content-Length: +5\r\n", "Content-Length: -1\r\n",
          "Content-Length: 99999999999999999999999\r\n", "Content-Length: %35\r\n", "Content-Length: \r\n",
          "Transfer-Encoding: gzip, chunked\r\n", "Transfer-Encoding: identity\r\n",
          "Transfer-Encoding: chunked\r\nTransfer-Encoding: chunked\r\n", "Content-Length : 5\r\n",
          "Content-Length: 5\n", "X: a\r\n b\r\nContent-Length: 5\r\n", "X: a\rb\r\nContent-Length: 5\r\n",
          "nonsense\r\nContent-Length: 5\r\n", ": x\r\nContent-Length: 5\r\n"}) {
        Client client(m_port);
        EXPECT_EQ(client.Ask(start + fields + "\r\n" + "0\r\n\r\n" + Right()).status, 400) << fields;
        EXPECT_TRUE(client.IsOver()) << fields;
    }
    EXPECT_EQ(m_answered, 0);
    EXPECT_FALSE(wsman::FramingOf("POST / HTTP/1.1\r\n"));
    EXPECT_FALSE(wsman::FramingOf("\r\n"));
    EXPECT_EQ(wsman::FramingOf("POST / HTTP/1.1\r\ncontent-length:\t7 \r\n\r\n")->length, 7u);
}

TEST_F(HttpServerTest, Chunks_AreCounted) {
    Start();
    const std::string head =
        std::string("POST /wsman HTTP/1.1\r\n") + kSoap + kAdmin + "Transfer-Encoding: chunked\r\n\r\n";
    Client client(m_port);
    EXPECT_EQ(client.Ask(head + "3\r\n<a/\r\n1\r\n>\r\n0\r\n\r\n").body, "admin:<a/>");
    EXPECT_TRUE(client.IsOver());
    Client large(m_port);
    EXPECT_EQ(large.Ask(head + "186A1\r\n" + std::string(100'001, 'x')).status, 413);
    EXPECT_TRUE(large.IsOver());
    for (const std::string& body :
         {std::string("nonsense\r\n"), std::string("-5\r\nabc"), "3\r\nabcX" + Right(),
          std::string(300'000, '0'), "1;" + std::string(300'000, 'x')}) {
        Client broken(m_port);
        EXPECT_EQ(broken.Ask(head + body).status, 400) << body.substr(0, 10);
        EXPECT_TRUE(broken.IsOver());
    }
    EXPECT_EQ(m_answered, 1);
}

TEST_F(HttpServerTest, AWrongPassword_HearsNothingElse) {
    Start();
    for (const std::string& fields :
         {std::string(), std::string(kWrong), std::string(kUnknown), std::string(kAdmin) + kWrong,
          std::string("Authorization: Basic YWRtaW4=\r\n"), std::string("Authorization: Basic !!!!\r\n"),
          std::string("Authorization: Basic \r\n"), std::string("Authorization: Basic ====\r\n"),
          std::string("Authorization: Negotiate YWRtaW46c2VjcmV0\r\n"),
          "Authorization: Basic " + std::string(1500, 'A') + "\r\n"}) {
        const Answer answer = Client(m_port).Ask(Post(kSoap + fields, "<a/>"));
        EXPECT_EQ(answer.status, 401) << fields;
        EXPECT_EQ(answer.fields.at("WWW-Authenticate"), "Basic realm=\"WSMAN\"");
        EXPECT_EQ(answer.body, "");
    }
    EXPECT_EQ(m_answered, 0);
    EXPECT_EQ(StatusOf(Post(std::string(kSoap) + "authorization: bASIC  YWRtaW46c2VjcmV0\r\n", "x")), 200);
}

TEST_F(HttpServerTest, ARefusedBody_IsNoRequest) {
    Start();
    Client client(m_port);
    EXPECT_EQ(client.Ask(Post(std::string(kSoap) + kWrong, Right("<hidden/>"))).status, 401);
    EXPECT_EQ(client.Ask(Right("<next/>")).body, "admin:<next/>");
    EXPECT_EQ(client.Ask(Post(kSoap, "")).status, 401) << "as clients begin that were not asked yet";
    EXPECT_EQ(client.Ask(Right()).status, 200);
    EXPECT_EQ(m_answered, 2);
    const Answer large = client.Ask(Post(kSoap, std::string(50'000, 'x')));
    EXPECT_EQ(large.status, 401);
    EXPECT_EQ(large.fields.at("Connection"), "close");
    EXPECT_TRUE(client.IsOver());
    Client chunked(m_port);
    EXPECT_EQ(
        chunked
            .Ask(std::string("POST /wsman HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n\r\n") + Right())
            .status,
        401);
    EXPECT_TRUE(chunked.IsOver());
    EXPECT_EQ(m_answered, 2);
}

TEST_F(HttpServerTest, ABodyIsAskedFor_OnlyWhereItIsWelcome) {
    Start();
    Client client(m_port);
    const std::string expecting = std::string(kSoap) + "Expect: 100-continue\r\nContent-Length: 4\r\n";
    EXPECT_EQ(client.Ask("POST /wsman HTTP/1.1\r\n" + expecting + kAdmin + "\r\n").status, 100);
    EXPECT_EQ(client.Ask("<a/>").status, 200);
    EXPECT_EQ(client.Ask("POST /wsman HTTP/1.1\r\n" + expecting + "\r\n").status, 401);
    EXPECT_TRUE(client.IsOver());
}

TEST_F(HttpServerTest, WrongPasswords_AreKeptApart) {
    HttpOptions options = Options();
    options.afterFailure = milliseconds(150);
    Start(std::move(options));
    const auto start = steady_clock::now();
    std::vector<std::thread> clients;
    for (const char* fields : {kWrong, kUnknown, kWrong}) {
        clients.emplace_back(
            [this, fields] { EXPECT_EQ(StatusOf(Post(std::string(kSoap) + fields, "x")), 401); });
    }
    EXPECT_EQ(StatusOf(Right()), 200);
    const auto right = steady_clock::now() - start;
    for (std::thread& each : clients) {
        each.join();
    }
    const auto all = steady_clock::now() - start;
    EXPECT_GE(all, milliseconds(450));
    EXPECT_LT(right, all - milliseconds(100)) << "who is right does not wait for them";
}

TEST_F(HttpServerTest, AStranger_MayAskWhoIsThere) {
    Start();
    const std::string stranger = std::string(kSoap) + "WSMANIDENTIFY: unauthenticated\r\n";
    Client client(m_port);
    const Answer answer = client.Ask(Post(stranger, kIdentify));
    EXPECT_EQ(answer.status, 200);
    EXPECT_NE(answer.body.find("IdentifyResponse"), std::string::npos);
    EXPECT_EQ(client.Ask(Post(stranger, "<a/>")).status, 401);
    EXPECT_EQ(client.Ask(Post(stranger, "<")).status, 401);
    EXPECT_EQ(client.Ask(Post(stranger + kWrong, kIdentify)).status, 401);
    EXPECT_EQ(client.Ask(Post(stranger, kIdentify + std::string(9000, ' '))).status, 413);
    EXPECT_EQ(m_answered, 0);
}

TEST_F(HttpServerTest, ASlowPeer_IsLeft) {
    HttpOptions options = Options();
    options.idle = milliseconds(150);
    Start(std::move(options));
    EXPECT_TRUE(Client(m_port).IsOver()) << "nothing comes";
    Client head(m_port);
    const auto start = steady_clock::now();
    for (int count = 0; count < 20 && head.Send("P"); ++count) { // a byte now and then is no sign of life
        std::this_thread::sleep_for(milliseconds(25));
    }
    EXPECT_TRUE(head.IsOver());
    EXPECT_LT(steady_clock::now() - start, milliseconds(2000));
    Client body(m_port);
    EXPECT_EQ(body.Ask(Right("x").substr(0, Right("x").size() - 1)).status, 400);
    EXPECT_TRUE(body.IsOver());
    Client idle(m_port);
    EXPECT_EQ(idle.Ask(Right()).status, 200);
    EXPECT_TRUE(idle.IsOver());
    EXPECT_EQ(m_answered, 1);
}

TEST_F(HttpServerTest, FiftyClients_AreServedAtOnce) {
    HttpOptions options = Options();
    options.head = options.body = milliseconds(30'000); // a busy computer is no slow peer
    Start(std::move(options));
    std::atomic<int> right = 0;
    std::vector<std::thread> clients;
    for (int number = 0; number < 50; ++number) {
        clients.emplace_back([this, number, &right] {
            Client client(m_port);
            for (int count = 0; count < 10; ++count) {
                const std::string body = std::to_string(number * 100 + count);
                right += client.Ask(Right(body)).body == "admin:" + body ? 1 : 0;
            }
        });
    }
    for (std::thread& each : clients) {
        each.join();
    }
    EXPECT_EQ(right, 500);
}

TEST_F(HttpServerTest, WhoeverFindsNoPlace_Waits) {
    HttpOptions options = Options();
    options.mostConnections = 1;
    Start(std::move(options));
    std::optional<Client> first(std::in_place, m_port);
    EXPECT_EQ(first->Ask(Right()).status, 200);
    Client second(m_port);
    EXPECT_TRUE(second.Send(Right()));
    std::this_thread::sleep_for(milliseconds(50));
    EXPECT_EQ(m_answered, 1);
    first.reset();
    EXPECT_EQ(second.Read().status, 200);
}

TEST_F(HttpServerTest, TheLog_SaysWhoAskedForWhat) {
    Start();
    Client client(m_port);
    client.Ask(Right());
    client.Ask(Post(std::string(kSoap) + kWrong, "x"));
    m_server->Stop(); // after the lines are written
    const auto lines = Lines();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_NE(lines[0].Text().find(" admin 127.0.0.1:"), std::string::npos) << lines[0].Text();
    EXPECT_NE(lines[0].Text().find(" Get Zorel_VLAN 200 ok "), std::string::npos) << lines[0].Text();
    EXPECT_NE(lines[1].Text().find(" - - 401 - "), std::string::npos) << lines[1].Text();
    wsman::LogLine line;
    line.action = "a/b\r\n\x1b[31m c\xC3\xA9";
    line.resource = std::string(10'000, 'x');
    const std::string text = line.Text();
    EXPECT_EQ(text.find_first_of("\r\n\x1b"), std::string::npos);
    EXPECT_NE(text.find(" b???[31m?c?? "), std::string::npos) << text;
    EXPECT_LT(text.size(), 300u);
}

TEST_F(HttpServerTest, Stop_LetsAnswersGoOut) {
    std::mutex mutex;
    std::condition_variable changed;
    bool hasBegun = false;
    bool mayEnd = false;
    m_server.emplace(Options());
    m_server->Serve("/wsman", [&](const std::string&, const std::string&) {
        std::unique_lock lock(mutex);
        hasBegun = true;
        changed.notify_all();
        changed.wait(lock, [&] { return mayEnd; });
        return Reply{200, "done"};
    });
    m_port = m_server->Start();
    Client idle(m_port);
    Client busy(m_port);
    busy.Send(Right() + Right("<too late/>"));
    std::unique_lock lock(mutex);
    changed.wait(lock, [&] { return hasBegun; });
    lock.unlock();
    std::thread stopping([this] { m_server->Stop(); });
    EXPECT_TRUE(idle.IsOver());
    lock.lock();
    mayEnd = true;
    changed.notify_all();
    lock.unlock();
    EXPECT_EQ(busy.Read().body, "done");
    EXPECT_TRUE(busy.IsOver());
    stopping.join();
    EXPECT_FALSE(Client(m_port).IsConnected());
    m_server->Stop(); // again does nothing
}

TEST_F(HttpServerTest, Stop_WaitsForNobodyWhoDoesNotRead) {
    HttpOptions options = Options();
    options.patience = milliseconds(200);
    m_server.emplace(std::move(options));
    std::atomic<bool> isAnswered = false;
    m_server->Serve("/wsman", [&](const std::string&, const std::string&) {
        isAnswered = true;
        return Reply{200, std::string(50'000'000, 'x')};
    });
    m_port = m_server->Start();
    Client client(m_port);
    client.Send(Right());
    while (!isAnswered) {
        std::this_thread::sleep_for(milliseconds(1));
    }
    const auto start = steady_clock::now();
    m_server->Stop();
    EXPECT_LT(steady_clock::now() - start, milliseconds(5000));
}

TEST_F(HttpServerTest, WhatKeepsItFromStarting_IsSaid) {
    Start();
    const auto start = [](HttpOptions options) -> std::string {
        try {
            HttpServer(std::move(options)).Start();
            return "it starts";
        } catch (const std::runtime_error& failure) {
            return failure.what();
        }
    };
    HttpOptions options;
    options.port = m_port;
    EXPECT_EQ(start(options), "127.0.0.1:" + std::to_string(m_port) + ": Address already in use");
    options.address = "256.0.0.1.invalid";
    EXPECT_EQ(start(options).find("256.0.0.1.invalid:"), 0u);
    options = {};
    options.tls = wsman::TlsFiles{"/nonexistent/cert.pem", "/nonexistent/key.pem"};
    EXPECT_EQ(start(options).find("/nonexistent/cert.pem: "), 0u);
}

TEST(PasswordsTest, OnlyUsableOnes_AreTaken) {
    wsman::Passwords users;
    EXPECT_TRUE(users.IsEmpty());
    users.Add("admin", "a:b");
    EXPECT_THROW(users.Add("admin", "x"), std::invalid_argument);
    EXPECT_THROW(users.Add("", "x"), std::invalid_argument);
    EXPECT_THROW(users.Add("a:b", "x"), std::invalid_argument);
    EXPECT_THROW(users.Add("a\n", "x"), std::invalid_argument);
    EXPECT_THROW(users.Add("b", ""), std::invalid_argument);
    EXPECT_EQ(users.UserOf("Basic YWRtaW46YTpi"), "admin"); // admin:a:b
    EXPECT_FALSE(users.UserOf("Basic YWRtaW46YQ=="));       // admin:a
    EXPECT_FALSE(users.UserOf("Basic"));
}

} // namespace

} // namespace quillet::tests

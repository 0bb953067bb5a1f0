// Bitstreams that are signed by a key which a root key has signed.

#include "key_chain.h"
#include "key_making.h"
#include "security_fixture.h"
#include "stream_reader.h"

#include <filesystem>

namespace
{

const std::string LABEL = "BITSTREAM \"Bitstream_1\" / PATH \"Bitstream_1.sof\": ";

/// Root, line and shift: each signs the next.
struct CHAINED : SETUP_BUILDER {
    CHAINED() : SETUP_BUILDER("LNKSX8")
    {
        content.device = "ZR9A012";
        bitstream("Bitstream_1", content);
        output("RBF", {"Bitstream_1"});
        for (const auto& [name, curve] :
             {std::pair{"root", "P-384"}, std::pair{"line", "P-256"}, std::pair{"shift", "P-384"}}) {
            make_private_pem(pem(name), curve);
            EXPECT_EQ(::chmod(pem(name).c_str(), 0600), 0);
            make_public_pem(pem(name), path(std::string(name) + ".pub"));
        }
        extend("root", "line", "", "line.skc");
        extend("line", "shift", path("line.skc"), "shift.skc");
        use("shift", "shift.skc");
    }
    std::string pem(const std::string& name) const { return path(name + ".pem"); }
    void extend(const std::string& signer, const std::string& key, const std::string& chain,
                const std::string& output)
    {
        std::string message;
        EXPECT_TRUE(make_key_chain({pem(signer), path(key + ".pub"), chain, "", path(output)}, message))
            << message;
    }
    void use(const std::string& signer, const std::string& chain)
    {
        file_of(*this).signing = "ON";
        file_of(*this).signing_pem_file = pem(signer);
        file_of(*this).skc_file = chain.empty() ? "" : path(chain);
    }
    LOADED_IMAGE load()
    {
        expect_written(*this);
        LOADED_STREAM stream;
        std::string error;
        EXPECT_TRUE(load_configuration_stream(read_file(path("out.rbf")), stream, error)) << error;
        return stream.images.empty() ? LOADED_IMAGE() : stream.images[0];
    }
    std::string refusal()
    {
        FINDINGS findings;
        check_setup(document(), true, "", findings);
        EXPECT_FALSE(findings.can_generate());
        return findings.message();
    }
    SMALL_BITSTREAM content;
};

std::string text_of(const BYTES& bytes)
{
    return {bytes.begin(), bytes.end()};
}

} // namespace

TEST(key_chains, the_device_gets_from_the_root_key_to_the_signature)
{
    CHAINED setup;
    for (const auto& [signer, chain] : {std::pair{"shift", "shift.skc"}, std::pair{"line", "line.skc"}}) {
        setup.use(signer, chain);
        const LOADED_IMAGE image = setup.load();
        EXPECT_EQ(image.configuration(), configuration_of(setup.content));
        EXPECT_EQ(reference_public_pem("P-384", image.root_key), read_text_file(setup.path("root.pub")));
        EXPECT_EQ(reference_public_pem(image.signature_curve, image.public_key),
                  read_text_file(setup.path(std::string(signer) + ".pub")));
    }
    const BYTES with_chain = read_file(setup.path("out.rbf"));
    expect_written(setup);
    EXPECT_EQ(read_file(setup.path("out.rbf")), with_chain);
    setup.use("line", "");
    EXPECT_TRUE(setup.load().root_key.empty());
    EXPECT_LT(read_file(setup.path("out.rbf")).size(), with_chain.size());
}

TEST(key_chains, the_openssl_program_verifies_a_link)
{
    const CHAINED setup;
    const BYTES file = read_file(setup.path("line.skc"));
    // Link 1: a P-256 key behind 12 bytes of file and 4 of record, then the root key with its signature.
    const auto key = file.begin() + 16;
    BYTES text;
    for (const char c : std::string("imagewright key chain 1")) {
        text.push_back(static_cast<std::uint8_t>(c));
    }
    text.push_back(1);
    text.insert(text.end(), key, key + 4 + 64);
    write_file(setup.path("text"), text);
    const BYTES numbers(file.end() - 96, file.end());
    write_file(setup.path("signature"), reference_der_signature(numbers));
    EXPECT_EQ(run_openssl("dgst -sha384 -verify '" + setup.path("root.pub") + "' -signature '" +
                          setup.path("signature") + "' '" + setup.path("text") + "'"),
              "Verified OK\n");
}

TEST(key_chains, chains_that_do_not_lead_to_the_signing_key_are_refused)
{
    CHAINED setup;
    setup.use("shift", "line.skc");
    EXPECT_EQ(setup.refusal(), LABEL + "The key chain \"" + setup.path("line.skc") +
                                   "\" ends with another key than \"" + setup.pem("shift") +
                                   "\"; name the chain of that key.");
    setup.use("shift", "none.skc");
    EXPECT_EQ(setup.refusal(), LABEL + setup.path("none.skc") + " cannot be opened: no such file.");
    write_file(setup.path("garbage.skc"), std::string("garbage"));
    setup.use("shift", "garbage.skc");
    EXPECT_EQ(setup.refusal(), LABEL + setup.path("garbage.skc") + " is no key chain; name one.");
    EXPECT_FALSE(run_generation(setup).success);
    EXPECT_FALSE(std::filesystem::exists(setup.path("out.rbf")));
}

TEST(key_chains, every_changed_byte_and_every_cut_of_a_chain_is_refused)
{
    const CHAINED setup;
    const BYTES good = read_file(setup.path("shift.skc"));
    KEY_CHAIN chain;
    std::string message;
    ASSERT_TRUE(read_key_chain(setup.path("shift.skc"), chain, message)) << message;
    EXPECT_EQ(chain.size(), 2U);
    const std::string path = setup.path("bad.skc");
    for (std::size_t i = 0; i < good.size(); ++i) {
        BYTES bad = good;
        bad[i] ^= static_cast<std::uint8_t>(1U << (i % 8));
        write_file(path, bad);
        EXPECT_FALSE(read_key_chain(path, chain, message)) << i;
        EXPECT_TRUE(message.starts_with(path + " ") && message.ends_with(".")) << message;
    }
    for (std::size_t size = 0; size < good.size(); size += 7) {
        write_file(path, BYTES(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(size)));
        EXPECT_FALSE(read_key_chain(path, chain, message)) << size;
    }
    write_file(path, text_of(good) + "x");
    EXPECT_FALSE(read_key_chain(path, chain, message));
    EXPECT_EQ(message, path + " is damaged: the key chain is malformed; take a good copy of it.");
}

TEST(key_chains, only_the_last_key_extends_a_chain_and_three_links_are_the_most)
{
    CHAINED setup;
    std::string message;
    KEY_CHAIN_REQUEST request{setup.pem("root"), setup.path("line.pub"), setup.path("shift.skc"), "",
                              setup.path("new.skc")};
    EXPECT_FALSE(make_key_chain(request, message));
    EXPECT_EQ(message,
              "The key chain ends with another key than the one that is to sign; name the private key of "
              "its last link.");
    request.signer_path = setup.path("shift.pub");
    EXPECT_FALSE(make_key_chain(request, message));
    EXPECT_EQ(message,
              setup.path("shift.pub") + " holds a public key alone; name the private key that is to sign.");
    setup.extend("shift", "line", setup.path("shift.skc"), "long.skc");
    setup.use("line", "long.skc");
    EXPECT_EQ(reference_public_pem("P-384", setup.load().root_key), read_text_file(setup.path("root.pub")));
    request = {setup.pem("line"), setup.path("root.pub"), setup.path("long.skc"), "", setup.path("new.skc")};
    EXPECT_FALSE(make_key_chain(request, message));
    EXPECT_EQ(message, "The key chain has 3 keys already, which is the most that there can be.");
    EXPECT_FALSE(std::filesystem::exists(setup.path("new.skc")));
}

TEST(key_chains, a_stream_whose_chain_was_exchanged_is_refused)
{
    CHAINED setup;
    expect_written(setup);
    // Another root for the same keys: sound in itself, and not what was signed.
    make_private_pem(setup.pem("thief"), "P-384");
    setup.extend("thief", "line", "", "thief.skc");
    setup.extend("line", "shift", setup.path("thief.skc"), "stolen.skc");
    const BYTES mine = read_file(setup.path("shift.skc"));
    const BYTES stolen = read_file(setup.path("stolen.skc"));
    ASSERT_EQ(mine.size(), stolen.size());
    BYTES stream = read_file(setup.path("out.rbf"));
    const auto place = std::search(stream.begin(), stream.end(), mine.begin() + 12, mine.end());
    ASSERT_NE(place, stream.end());
    std::copy(stolen.begin() + 12, stolen.end(), place);
    const auto record = static_cast<std::size_t>(place - stream.begin());
    const std::size_t size = mine.size() - 12;
    const std::uint32_t crc = reference_crc32(std::span(stream).subspan(record - 4, size + 4));
    for (unsigned i = 0; i < 4; ++i) {
        stream[record + size + i] = static_cast<std::uint8_t>(crc >> (8 * i));
    }
    STREAM_FACTS facts;
    std::string message;
    EXPECT_FALSE(read_configuration_stream(MEMORY_SOURCE(stream), true, facts, nullptr, message));
    EXPECT_THAT(message, testing::EndsWith("the signature does not fit the image."));
}

#include "test_keys.h"

#include "child_process.h"

#include <gtest/gtest.h>

std::string run_openssl(const std::string& arguments)
{
    const CHILD_RESULT result = run_program({"sh", "-c", "openssl " + arguments});
    EXPECT_EQ(result.exit_code, 0) << "openssl " << arguments << "\n" << result.out << result.err;
    return result.out;
}

void make_private_pem(const std::string& path, const std::string& curve, const std::string& password)
{
    run_openssl("genpkey -algorithm EC -pkeyopt ec_paramgen_curve:" + curve + " -out '" + path + "'" +
                (password.empty() ? "" : " -aes-256-cbc -pass 'pass:" + password + "'"));
}

void make_public_pem(const std::string& private_path, const std::string& public_path)
{
    run_openssl("pkey -in '" + private_path + "' -pubout -out '" + public_path + "'");
}

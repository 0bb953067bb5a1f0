#ifndef IMAGEWRIGHT_TESTS_TEST_KEYS_H
#define IMAGEWRIGHT_TESTS_TEST_KEYS_H

#include <string>

// Keys for tests, made by the openssl program. A failure fails the test.

/// Writes an EC private key in PKCS #8, under a password unless that is empty. `curve`: "P-256", "P-384", ...
void make_private_pem(const std::string& path, const std::string& curve, const std::string& password = "");
/// Writes the public half of a private key in PEM.
void make_public_pem(const std::string& private_path, const std::string& public_path);
/// Runs openssl with the arguments and expects it to succeed; what it printed.
std::string run_openssl(const std::string& arguments);

#endif

// Stands in for the help module in the tests of F1: remembers what it was asked to show.

#include <string>

namespace
{

std::string& topics()
{
    static std::string text;
    return text;
}

} // namespace

extern "C" {

__attribute__((visibility("default"))) void help_show_context_impl(const char* topic)
{
    topics() += std::string(topic) + ";";
}

__attribute__((visibility("default"))) const char* help_sample_topics()
{
    return topics().c_str();
}
}

extern "C" int sample_answer()
{
    return 42;
}

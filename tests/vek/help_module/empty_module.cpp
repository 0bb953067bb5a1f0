// A help module without the function that shows help.

extern "C" {

__attribute__((visibility("default"))) int help_sample_nothing()
{
    return 0;
}
}

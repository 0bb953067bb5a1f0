#ifndef MSG_TYPES_H
#define MSG_TYPES_H

#include "msg_base.h"

/// Plain output to the user.
class MSG_O final : public MSG_BASE
{
public:
    explicit MSG_O(MSG_REPORT* report) : MSG_BASE(MSG_SEVERITY::OUTPUT, report) {}
};

/// A yes-or-no question. report() returns MSG_ANSWER_YES or MSG_ANSWER_NO; the answer comes from whoever has
/// installed itself with MSG_SERVICE::set_answerer, and is no where nobody has.
class MSG_YN final : public MSG_BASE
{
public:
    explicit MSG_YN(MSG_REPORT* report) : MSG_BASE(MSG_SEVERITY::QUESTION, report) {}
    int report(MSG_REPORT* destination) override;
};

class MSG_E final : public MSG_BASE
{
public:
    explicit MSG_E(MSG_REPORT* report) : MSG_BASE(MSG_SEVERITY::ERROR, report) {}
};

class MSG_I : public MSG_BASE
{
public:
    explicit MSG_I(MSG_REPORT* report) : MSG_BASE(MSG_SEVERITY::INFORMATION, report) {}
};

class MSG_W : public MSG_BASE
{
public:
    explicit MSG_W(MSG_REPORT* report) : MSG_BASE(MSG_SEVERITY::WARNING, report) {}
};

/// What a factory returns for a suppressed information: the same interface, and nothing is reported.
class MSG_I_NULL final : public MSG_I
{
public:
    explicit MSG_I_NULL(MSG_REPORT* report) : MSG_I(report) {}
    int report(MSG_REPORT*) override { return 0; }
};

/// What a factory returns for a suppressed warning.
class MSG_W_NULL final : public MSG_W
{
public:
    explicit MSG_W_NULL(MSG_REPORT* report) : MSG_W(report) {}
    int report(MSG_REPORT*) override { return 0; }
};

#endif

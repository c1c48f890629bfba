#include "ReuseSwitch.h"

#include <utility>

#include "AnswerReuse.h"

ReuseSwitchRecord reuseSwitch;

AnswerReuse::AnswerReuse() : m_before(std::exchange(answersInUse.answers, reuseSwitch.plainWay ? nullptr : &m_answers))
{
}

AnswerReuse::~AnswerReuse()
{
    answersInUse.answers = m_before;
}

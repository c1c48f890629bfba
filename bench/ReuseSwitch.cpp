#include "ReuseSwitch.h"

#include <utility>

#include "AnswerReuse.h"

ReuseSwitchRecord reuseSwitch;

AnswerReuse::AnswerReuse() : m_before(std::exchange(answerReuse.answers, reuseSwitch.plainWay ? nullptr : &m_answers))
{
}

AnswerReuse::~AnswerReuse()
{
    answerReuse.answers = m_before;
}

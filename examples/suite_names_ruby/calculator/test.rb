# Finds its objects by names that are constants of a module.

require 'names'

def keys(text)
  text.split.each { |key| click(Names.button(key)) }
end

def main
  startApplication('calculator')

  test.startSection('Names are constants')
  keys('7 + 5')
  click(Names::EQUALS_BUTTON)
  test.expect(Names::DISPLAY, { text: '12' })
  test.endSection

  test.startSection('and texts, as in verification points and expressions')
  click(':CLEAR_ALL_BUTTON')
  test.expect(':DISPLAY', { text: '0' })
  click("{type='Button' text='1' window=':WINDOW'}")
  test.expect('Names::DISPLAY', { text: '1' })
  test.endSection

  test.startSection('What a name stands for, and the other way round')
  test.compare(objectMap.realName(':DISPLAY'), "{type='QLineEdit' window={type='Calculator'}}")
  test.compare(objectMap.symbolicName(Names::EQUALS_BUTTON), ':EQUALS_BUTTON')
  test.verify(objectMap.symbolicNames.include?(':WINDOW'))
  test.endSection
end

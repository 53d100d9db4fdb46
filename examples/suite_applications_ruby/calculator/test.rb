# Clicks the buttons of a calculator and reads its display.

require 'keys'

def main
  startApplication('calculator')
  display = waitForObject(':Display')
  test.vp('display.vp', 'as it starts')

  test.startSection('Sums')
  press('7 + 5 =')
  test.expect(display, { text: '12' }, comment: '7 + 5')
  press('Sqrt')
  test.expect(display, { 'text*' => '3.4641*' }, comment: 'its root')
  test.endSection

  test.startSection('Memory')
  press('MS')
  click("{type='Button' text='Clear All'}")
  test.expect(display, { text: '0' }, comment: 'cleared')
  press('MR')
  test.expect(display, { 'text*' => '3.4641*' }, comment: 'recalled')
  test.endSection

  test.verify(display.readOnly, 'nobody types into the display')
end

parameter_type('colour', 'red|green', &:upcase)

before_scenario('@special') do
  test.log('only for the tag') # @special
end

after_feature do |context|
  test.log("done with #{context.feature}") # @done
end

Given('a {colour} light') do |_context, value| # @step10
  test.log(value) # @light
end

Given('something to do') do # @step11
  pending('later') # @pending
end

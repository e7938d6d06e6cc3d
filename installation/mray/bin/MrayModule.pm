# SPDX-License-Identifier: Apache-2.0
# Makes a module out of a whole shader: the shader's main becomes the function
#
#   vec4 NAME(float ARGUMENT, ...)
#
# of a file that can be included in other shaders. What the renderer gives to a
# shader, the prelude, is left to the shader that includes the file.

package MrayModule;

use strict;
use warnings;

# Takes the shader's name, its arguments, a reference to the records of its lines, and
# what tells in words where the line of a record comes from. Gives the records of the module, those of a complete shader that calls
# it, and the number of lines of the latter that stand before the module.
sub make {
	my ($name, $arguments, $source, $origin, $fail) = @_;
	my (@directives, @prelude, @help, @before, @body, @after);
	my $part = \@before;
	my $state = { depth => 0, round => 0, comment => 0 };
	for my $record (@$source) {
		my ($text, $from, $kind) = @$record;
		$kind //= '';
		if ($kind eq 'help') {
			push @help, $record;
		} elsif ($kind eq 'prelude') {
			push @prelude, $record;
		} elsif ($kind eq 'main') {
			$part = \@body;
			$state = { depth => 0, round => 0, comment => 0 };
			my $rest = $text =~ s/^[^)]*\)\s*//r;
			code_of($rest, $state);
			push @body, ['{', ''], ['    vec4 tvColor;', ''], [$1, $from, undef, undef, 1] if $rest =~ /^\{(.*)/;
		} elsif ($text eq "// Shader $name") {
			# The module has an introduction of its own.
		} elsif ($text =~ /^\s*#\s*(?:version|extension)\b/) {
			push @directives, $record;
		} else {
			my ($was, $inside) = @$state{qw(depth round)};
			my $code = code_of($text, $state);
			if ($part != \@body) {
				$was == 0 && $inside == 0 && $code =~ /^\s*((?:layout\s*\(.*?\)\s*|flat\s+)*(?:uniform|in|out)\s.*\w)/
					and $fail->(join ': ', grep { $_ ne '' } $origin->($record), "a module cannot have '$1' of its own");
				push @$part, $record;
				next;
			}
			$text =~ s/\breturn\s*;/return tvColor;/g if $code =~ /\breturn\s*;/;
			if ($was > 0 && $state->{depth} <= 0) {
				push @body, ['    return tvColor;', ''], [$text, $from];
				$part = \@after;
				next;
			}
			push @body, [$text, $from, undef, undef, 1];
			push @body, ['    vec4 tvColor;', ''] if $was == 0 && $state->{depth} > 0;
		}
	}
	@body or $fail->('the template has no void main(), so there is nothing to make a function of');
	$part == \@after or $fail->('main has no closing brace');

	my $function = MrayShader::function_name($name);
	my %own = map { $_ => 1 } globals(@before, @after);
	my @clash = grep { $own{$_} } map { $_->{name} } @$arguments;
	@clash and $fail->("an argument cannot be named '$clash[0]', which a box has as a name of its own");
	# Two modules in one shader must not meet, whatever they hold.
	rename_in(\%own, $function, @before, @body, @after);

	my @module = (
		["#ifndef TAVRN_MODULE_$function", ''],
		["#define TAVRN_MODULE_$function", ''],
		@help,
		map({ [$_, ''] } introduction($name, \@directives, \@before, \@body, \@after)),
		@before, head($function, $arguments), @body, @after,
		["#endif // TAVRN_MODULE_$function", '']);
	my @ahead = (@directives, ["// The module $name, called with its defaults", ''], @prelude, ['', '']);
	my $call = join ', ', map { $_->{value} } @$arguments;
	return {
		module => \@module,
		complete => [@ahead, @module, map { [$_, ''] } '', 'void main()', '{',
			"    tvColor = $function($call);", '}'],
		ahead => scalar @ahead,
	};
}

# A line without its comments. $state goes along from line to line: whether a
# comment is open, and the depth of the braces and of the round brackets.
sub code_of {
	my ($text, $state) = @_;
	my $code = '';
	while ($text ne '') {
		if ($state->{comment}) {
			$text =~ s{^.*?\*/}{}s or last;
			$state->{comment} = 0;
		} elsif ($text =~ s{^/\*}{}) {
			$state->{comment} = 1;
			$code .= ' ';
		} elsif ($text =~ m{^//}) {
			last;
		} else {
			$text =~ s{^(/|[^/]+)}{};
			$code .= $1;
		}
	}
	$state->{depth} += ($code =~ tr/{//) - ($code =~ tr/}//);
	$state->{round} += ($code =~ tr/(//) - ($code =~ tr/)//);
	return $code;
}

# The functions, constants, types and macros that records define.
sub globals {
	my $state = { depth => 0, round => 0, comment => 0 };
	my %names;
	for my $record (@_) {
		my $depth = $state->{depth} + $state->{round};
		my $code = code_of($record->[0], $state);
		if ($code =~ /^\s*#\s*define\s+(\w+)/) {
			$names{$1} = 1;
		} elsif ($depth == 0 && ($code =~ /^\s*(?:const\s+)?(?:(?:low|medium|high)p\s+)?
				[A-Za-z_]\w*(?:\s*\[[^\]]*\])?\s+([A-Za-z_]\w*)\s*[(=;\[]/x
				|| $code =~ /^\s*struct\s+([A-Za-z_]\w*)/)) {
			$names{$1} = 1;
		}
	}
	delete @names{ grep { /^(?:gl_|tv[A-Z_]|TV_)/ } keys %names };
	return keys %names;
}

# Puts the module's name before the names of %$own, wherever they stand.
sub rename_in {
	my ($own, $function, @records) = @_;
	%$own or return;
	my $any = join '|', map { quotemeta } sort { length $b <=> length $a || $a cmp $b } keys %$own;
	$any = qr/(?<![\w.])($any)(?!\w)/;
	for my $record (@records) {
		$record->[0] =~ s/$any/$function . '_' . $1 =~ s{^_+}{}r/ge;
	}
}

# What a user of the module has to know.
sub introduction {
	my ($name, $directives, @parts) = @_;
	my $state = { depth => 0, round => 0, comment => 0 };
	my %wanted;
	for my $record (map { @$_ } @parts) {
		my $code = code_of($record->[0], $state);
		$wanted{ $1 . ($2 ? '()' : '') } = 1 while $code =~ /\b(tv[A-Z]\w*)(\s*\()?/g;
	}
	delete $wanted{tvColor};
	my @lines = ("// Module $name: include it in a shader and call the function at its end.");
	push @lines, "// It needs: $_->[0]" for grep { $_->[0] =~ /extension/ } @$directives;
	if (%wanted) {
		push @lines, '// The shader that includes it gives it, as glsl/surface.glsl does:';
		my $line = '//  ';
		for my $word (sort keys %wanted) {
			if (length("$line $word") > 76) {
				push @lines, $line;
				$line = '//  ';
			}
			$line .= " $word";
		}
		push @lines, $line;
	}
	return (@lines, '');
}

# The function's name and parameters, each with its default and its remark.
sub head {
	my ($function, $arguments) = @_;
	@$arguments or return ["vec4 $function()", ''];
	my @declared = map { "$_->{glsl} $_->{name}" . ($_ == $arguments->[-1] ? '' : ',') } @$arguments;
	my ($wide) = sort { $b <=> $a } map { length } @declared;
	my @lines = (['// Behind each parameter: its default, its range and what it is for.', ''], ["vec4 $function(", '']);
	for my $arg (@$arguments) {
		my $remark = join '  ', grep { $_ ne '' } "= $arg->{value}",
			defined $arg->{low} ? sprintf('[%g %g]', $arg->{low}, $arg->{high}) : '', MrayShader::remark_of($arg);
		push @lines, [sprintf("    %-${wide}s // %s", shift @declared, $remark),
			$arg->{line}, undef, $arg];
	}
	return (@lines, [')', '']);
}

1;
